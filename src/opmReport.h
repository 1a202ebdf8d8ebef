#ifndef OPMREPORT_H
#define OPMREPORT_H

#include <cstddef>

// The HTML report is written by COpmMainPage's saveOpmResult, saveGeneralInfoOfSet and
// writeOpmHtmlData (opmReport.cpp); this is what the report needs besides the page.

// The software version: the first line of the vendor information file from "Common" on.
// 0 when the file was read, -1 when it cannot be opened, -2 for null arguments or no room.
int opmGetVersion(const char* sPath, char* pOut, size_t nOutLength);

#endif // OPMREPORT_H
