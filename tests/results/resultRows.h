#ifndef RESULTROWS_H
#define RESULTROWS_H

// Saved readings for the Result tab and report suites, written as "mode|wave|value|pass" (an
// empty pass: limits off) with optional "|min|max|unit|ref|length".

#include "fixedText.h"
#include "opmMain.h"

#include <QStringList>

#include <cstring>

inline Result resultFrom(const QString& row)
{
    const QStringList f = row.split('|');
    Result r;
    std::memset(&r, 0, sizeof r);
    const auto put = [](char(&field)[16], const QString& text) {
        FixedText::copy(field, text.toLatin1().constData());
    };
    put(r.testMode, f.value(0));
    put(r.waveLenth, f.value(1));
    put(r.value, f.value(2));
    put(r.pass, f.value(3));
    r.isLimit = !f.value(3).isEmpty();
    put(r.minimum, f.value(4));
    put(r.maximum, f.value(5));
    put(r.limitsUnit, f.value(6));
    put(r.ref, f.value(7));
    put(r.fiberLength, f.value(8));
    return r;
}

// Empties the store and saves the readings in order; returns their save times.
inline QStringList storeResults(const QStringList& rows)
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    QStringList times;
    for (const QString& row : rows) {
        Result r = resultFrom(row);
        store->addResultItem(r);
        times << QString::fromLatin1(r.time);
    }
    return times;
}

#endif // RESULTROWS_H
