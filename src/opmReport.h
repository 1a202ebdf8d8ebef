#ifndef OPMREPORT_H
#define OPMREPORT_H

#include <QByteArray>

#include <cstddef>
#include <cstdio>
#include <list>

struct Result;
namespace halmanager {
class PlatE2PromServ;
}

// The HTML report of the saved readings (the main page's export, F1): written into an open file
// from the results and the set's general information (the date and time, the software version
// of the vendor information file, and the MAC address and serial number of the EEPROM).

// The whole report: the general information, then one table per result, oldest first.
void opmWriteReport(FILE* html, const std::list<Result>& results,
                    halmanager::PlatE2PromServ& eeprom);

// The whole report saved under `path`: written beside it under a name of its own and renamed to
// `path` once complete, so that the name never holds half a report. False when it cannot be
// written there; an existing report of that name is then left as it was.
bool opmExportReport(const QByteArray& path, const std::list<Result>& results,
                     halmanager::PlatE2PromServ& eeprom);

// The general information's heading and table, in the given font size.
void opmWriteGeneralInfo(FILE* pfOutput, int font_size, halmanager::PlatE2PromServ& eeprom);

// One table per result.
void opmWriteResults(FILE* html, const std::list<Result>& results);

// The software version: the first line of the vendor information file from "Common" on.
// 0 when the file was read, -1 when it cannot be opened, -2 for null arguments or no room.
int opmGetVersion(const char* sPath, char* pOut, size_t nOutLength);

#endif // OPMREPORT_H
