#ifndef HTMLTEXT_H
#define HTMLTEXT_H

#include <QByteArray>

// A text for the report's HTML: "&", "<", ">" and '"' become character references, so that a
// text from the reader, a file or the EEPROM cannot end a cell or start markup of its own.
QByteArray htmlEscaped(const char* text);

#endif // HTMLTEXT_H
