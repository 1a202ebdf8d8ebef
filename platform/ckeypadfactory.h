#ifndef CKEYPADFACTORY_H
#define CKEYPADFACTORY_H

#include <QString>

class QWidget;

class CKeyPadFactory
{
public:
    enum KeyPadType { KeyPadNumeric = 3, KeyPadText = 5 };

    // Modal keypad: returns the confirmed entry, or the given text when the operator cancels.
    static QString accessKeyPad(const QString& title, const QString& text, int type, int min,
                                int max, QWidget* parent);
    // Same keypad; tells whether the entry was confirmed and hands it over through entry.
    static bool runKeyPad(const QString& title, const QString& text, int type, int min, int max,
                          QWidget* parent, QString* entry);
};

#endif // CKEYPADFACTORY_H
