#include "opmReport.h"

#include "devicePaths.h"
#include "fileReplace.h"
#include "htmlText.h"
#include "opm.h"
#include "plate2promserv.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <list>
#include <vector>

#include <unistd.h>

namespace {

const int kReportFontSize = 4;

const char kRowFormat[] = "\t<tr><font size=\"%d\"> <td>%s</td><td>%s</td></font></tr>\n";

// The kinds of table a result gets, by its mode, its limits and its length.
enum TableKind {
    PowerWithLimits, // Power Meter, limits on
    PowerPlain, // Power Meter, limits off
    LossPerLength, // Loss Meter, limits on, a fibre length
    LossWithLimits, // Loss Meter, limits on, no length
    LossPlain, // Loss Meter, limits off
    kTableKindCount
};

// The header row of each table kind.
const char* const kTableHeaders[kTableKindCount] = {
    "<tr><th>ST</th><th>WaveLenth(nm)</th><th>Test Mode</th><th>Minimum</th><th>Maximum</th>"
    "<th>Value</th><th>Pass</th></tr>",
    "<tr><th>ST</th><th>WaveLenth(nm)</th><th>Test Mode</th><th>Value</th></tr>",
    "<tr><th>ST</th><th>WaveLenth(nm)</th><th>Test Mode</th><th>Ref.(dBm)</th><th>Length</th>"
    "<th>Minimum</th><th>Maximum</th><th>Value</th><th>Pass</th></tr>",
    "<tr><th>ST</th><th>WaveLenth(nm)</th><th>Test Mode</th><th>Ref.(dBm)</th>"
    "<th width=\"100px\">Minimum</th><th>Maximum</th><th>Value</th><th>Pass</th></tr>",
    "<tr><th>ST</th><th>WaveLenth(nm)</th><th>Test Mode</th><th>Ref.(dBm)</th><th>Value</th></tr>",
};

const char kFirstCell[] = "<tr><td align=\"center\">%s</td>";
const char kPlainCell[] = "<td align=\"center\">%s</td>";
const char kNumberUnitCell[] = "<td align=\"center\">%s%s</td>";
const char kNumberUnitNoWrapCell[] = "<td noWrap align=\"center\">%s%s</td>";
const char kPlainNoWrapCell[] = "<td noWrap align=\"center\">%s</td>";
const char kLastCell[] = "<td align=\"center\">%s</td></tr></table><br />";

// The HTML text of one result, built in a fixed buffer and cut rather than overrun.
class ResultTable
{
public:
    ResultTable() : m_used(0)
    {
        m_text[0] = '\0';
        add("<table border=\"1\">\n");
    }

    void add(const char* format, ...) __attribute__((format(printf, 2, 3)))
    {
        if (m_used >= sizeof m_text - 1)
            return;
        va_list args;
        va_start(args, format);
        const int n = vsnprintf(m_text + m_used, sizeof m_text - m_used, format, args);
        va_end(args);
        if (n > 0)
            m_used = std::min(m_used + size_t(n), sizeof m_text - 1);
    }

    const char* text() const { return m_text; }

private:
    // Room for a result whose every field is escaped at its full width, so escaping never cuts.
    char m_text[2048];
    size_t m_used;
};

TableKind tableKind(const Result& r)
{
    if (strcmp(r.testMode, "Loss Meter") != 0)
        return r.isLimit ? PowerWithLimits : PowerPlain;
    if (!r.isLimit)
        return LossPlain;
    return r.fiberLength[0] != '\0' ? LossPerLength : LossWithLimits;
}

void addCells(ResultTable& t, TableKind kind, const Result& r)
{
    t.add(kFirstCell, htmlEscaped(r.time).constData());
    t.add(kPlainCell, htmlEscaped(r.waveLenth).constData());
    t.add(kPlainCell, htmlEscaped(r.testMode).constData());
    switch (kind) {
    case PowerWithLimits:
        t.add(kNumberUnitCell, htmlEscaped(r.minimum).constData(),
              htmlEscaped(r.limitsUnit).constData());
        t.add(kNumberUnitCell, htmlEscaped(r.maximum).constData(),
              htmlEscaped(r.limitsUnit).constData());
        t.add(kPlainCell, htmlEscaped(r.value).constData());
        t.add(kLastCell, htmlEscaped(r.pass).constData());
        break;
    case PowerPlain:
        t.add(kLastCell, htmlEscaped(r.value).constData());
        break;
    case LossPerLength:
    case LossWithLimits:
        t.add(kPlainCell, htmlEscaped(r.ref).constData());
        if (kind == LossPerLength)
            t.add(kPlainCell, htmlEscaped(r.fiberLength).constData());
        t.add(kNumberUnitNoWrapCell, htmlEscaped(r.minimum).constData(),
              htmlEscaped(r.limitsUnit).constData());
        t.add(kNumberUnitCell, htmlEscaped(r.maximum).constData(),
              htmlEscaped(r.limitsUnit).constData());
        t.add(kPlainNoWrapCell, htmlEscaped(r.value).constData());
        t.add(kLastCell, htmlEscaped(r.pass).constData());
        break;
    case LossPlain:
    case kTableKindCount:
        t.add(kPlainCell, htmlEscaped(r.ref).constData());
        t.add(kLastCell, htmlEscaped(r.value).constData());
        break;
    }
}

void writeRow(FILE* out, int fontSize, const QString& label, const char* value)
{
    fprintf(out, kRowFormat, fontSize, label.toUtf8().constData(), htmlEscaped(value).constData());
}

// line: the source line of the EEPROM read that failed
void printReadError(int line)
{
    printf("### ERROR: FILE:%s\t Func:%s\t%d\n", __FILE__, "saveGeneralInfoOfSet", line);
}

// Day and month names are English whatever the machine's locale.
QString reportDateTime(const QDateTime& now)
{
    return QLocale(QLocale::English).toString(now, QString::fromLatin1("dddd MMMM yyyy hh:mm:ss"));
}

} // namespace

int opmGetVersion(const char* sPath, char* pOut, size_t nOutLength)
{
    if (!sPath || !pOut || nOutLength == 0)
        return -2;
    FILE* in = fopen(sPath, "r");
    if (!in)
        return -1;
    memset(pOut, 0, nOutLength);
    std::vector<char> line(nOutLength, '\0');
    if (nOutLength > 1 && fgets(&line[0], int(std::min<size_t>(nOutLength, INT_MAX)), in)) {
        const char* common = strstr(&line[0], "Common");
        if (common)
            strcpy(pOut, common);
    }
    fclose(in);
    return 0;
}

void opmWriteGeneralInfo(FILE* pfOutput, int font_size, halmanager::PlatE2PromServ& eeprom)
{
    fprintf(pfOutput, "\n<br><font size=%d> <a  style=\"color:blue;\"> %s </a> </font> </br>\n",
            font_size, QObject::tr("General Information").toUtf8().constData());
    fputs("<table border=\"1\">\n", pfOutput);
    writeRow(pfOutput, font_size, QObject::tr("Date and Time Results Were Saved:"),
             reportDateTime(QDateTime::currentDateTime()).toUtf8().constData());

    char version[128] = {};
    char macText[32] = {};
    unsigned char mac[6] = {};
    char serial[32] = {};

    opmGetVersion(DevicePaths::vendorInfoFile().toLocal8Bit().constData(), version, sizeof version);
    writeRow(pfOutput, font_size, QObject::tr("Software Version:"), version);

    const int macLine = __LINE__ + 1;
    if (eeprom.ReadMacAddr(reinterpret_cast<char*>(mac)) == 0) {
        snprintf(macText, sizeof macText, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2],
                 mac[3], mac[4], mac[5]);
        writeRow(pfOutput, font_size, QObject::tr("MAC Address of Test Port:"), macText);
    } else {
        printReadError(macLine);
    }

    const int serialLine = __LINE__ + 1;
    if (eeprom.ReadSN(serial) == 0) {
        serial[sizeof serial - 1] = '\0';
        writeRow(pfOutput, font_size, QObject::tr("Serial Number of Test Set:"), serial);
    } else {
        printReadError(serialLine);
    }

    fputs("</table>", pfOutput);
    fputs("<br>", pfOutput);
}

void opmWriteResults(FILE* html, const std::list<Result>& results)
{
    for (std::list<Result>::const_iterator it = results.begin(); it != results.end(); ++it) {
        const Result& result = *it;
        const TableKind kind = tableKind(result);
        ResultTable table;
        table.add("%s", kTableHeaders[kind]);
        addCells(table, kind, result);
        fputs(table.text(), html);
    }
}

void opmWriteReport(FILE* html, const std::list<Result>& results,
                    halmanager::PlatE2PromServ& eeprom)
{
    fputs("<html>\n<head><title>OPM Result</title></head>\n", html);
    fputs("<body>\n<h4>OPM Result</h4>", html);
    opmWriteGeneralInfo(html, kReportFontSize, eeprom);
    opmWriteResults(html, results);
    fputs("</body>\n</html>", html);
}

bool opmExportReport(const QByteArray& path, const std::list<Result>& results,
                     halmanager::PlatE2PromServ& eeprom)
{
    // Not ".html": a report cut short by a crash is never taken for one.
    const QByteArray pending = path + ".part";
    FILE* html = fopen(pending.constData(), "w");
    if (!html)
        return false;
    opmWriteReport(html, results, eeprom);
    const bool written = !ferror(html);
    if (fclose(html) != 0 || !written) {
        unlink(pending.constData());
        return false;
    }
    return FileReplace::commit(pending, path);
}
