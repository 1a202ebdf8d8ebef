#ifndef RESULTROWS_H
#define RESULTROWS_H

// Saved readings for the Result tab and report suites, written as "mode|wave|value|pass" (an
// empty pass: limits off) with optional "|min|max|unit|ref|length".

#include "fixedText.h"
#include "opmMain.h"

#include <QStringList>

// Empties the store and saves the readings in order; returns their save times.
inline QStringList storeResults(const QStringList& rows)
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    QStringList times;
    foreach (const QString& row, rows) {
        const QStringList f = row.split('|');
        Result r = {};
        char* const fields[] = { r.testMode, r.waveLenth,  r.value, r.pass,       r.minimum,
                                 r.maximum,  r.limitsUnit, r.ref,   r.fiberLength };
        for (int j = 0; j < 9; ++j)
            FixedText::copy(fields[j], 16, f.value(j).toLatin1().constData());
        r.isLimit = !f.value(3).isEmpty();
        store->addResultItem(r);
        times << QString::fromLatin1(r.time);
    }
    return times;
}

#endif // RESULTROWS_H
