// Exports a report of the most results the page keeps to the path it is given, as the main
// page's export does: the program that tst_savecrash ends at each step of an export.
#include "devicePaths.h"
#include "fixedText.h"
#include "opm.h"
#include "opmReport.h"
#include "plate2promserv.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>
#include <list>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2)
        return 2;
    std::list<Result> results;
    for (int i = 0; i < 12; ++i) {
        Result r;
        std::memset(&r, 0, sizeof r);
        FixedText::copy(r.testMode, sizeof r.testMode, "Loss Meter");
        FixedText::copy(r.waveLenth, sizeof r.waveLenth, "1550");
        FixedText::copy(r.minimum, sizeof r.minimum, "-3.500");
        FixedText::copy(r.maximum, sizeof r.maximum, "0.750");
        FixedText::copy(r.limitsUnit, sizeof r.limitsUnit, "dB/km");
        FixedText::copy(r.ref, sizeof r.ref, "-7.019");
        FixedText::copy(r.fiberLength, sizeof r.fiberLength, "2.7");
        FixedText::copy(r.pass, sizeof r.pass, "YES");
        std::snprintf(r.value, sizeof r.value, "-%d.%03d", i / 4, 271 * i % 1000);
        r.isLimit = true;
        FixedText::copy(r.time, sizeof r.time, "2026-11-24 14:05:09");
        results.push_back(r);
    }
    halmanager::PlatE2PromServ eeprom(deviceRoot());
    return opmExportReport(QByteArray(argv[1]), results, eeprom) ? 0 : 1;
}
