#include "htmlText.h"

QByteArray htmlEscaped(const char* text)
{
    QByteArray escaped;
    for (const char* c = text ? text : ""; *c != '\0'; ++c) {
        switch (*c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += *c;
            break;
        }
    }
    return escaped;
}
