#include "trendSeries.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace TrendSeries {

namespace {

bool plotted(const TrendCsv::Row& row) { return row.isReading() && row.unit == "dBm"; }

// The usual time between rows: the median of the forward steps (0 when there are none).
int64_t usualStep(const std::vector<TrendCsv::Row>& rows)
{
    std::vector<int64_t> steps;
    for (size_t i = 1; i < rows.size(); ++i) {
        if (rows[i].msSinceEpoch > rows[i - 1].msSinceEpoch)
            steps.push_back(rows[i].msSinceEpoch - rows[i - 1].msSinceEpoch);
    }
    if (steps.empty())
        return 0;
    std::nth_element(steps.begin(), steps.begin() + steps.size() / 2, steps.end());
    return steps[steps.size() / 2];
}

bool continues(const TrendCsv::Row& previous, const TrendCsv::Row& row, int64_t usual)
{
    const int64_t step = row.msSinceEpoch - previous.msSinceEpoch;
    return plotted(previous) && previous.wavelength == row.wavelength && step >= 0
        && step <= 3 * usual;
}

Series* seriesOf(Log* log, const std::string& wavelength)
{
    for (Series& s : log->series) {
        if (s.wavelength == wavelength)
            return &s;
    }
    log->series.push_back(Series());
    log->series.back().wavelength = wavelength;
    return &log->series.back();
}

// One line, at most kMaxLine characters (CR and LF dropped); false at the end of the file.
// A longer line is read to its end and comes back empty with tooLong set.
bool readLine(std::FILE* file, std::string* line, bool* tooLong)
{
    line->clear();
    *tooLong = false;
    int c;
    while ((c = std::getc(file)) != EOF && c != '\n') {
        if (line->size() >= kMaxLine)
            *tooLong = true;
        else if (c != '\r')
            *line += char(c);
    }
    if (*tooLong)
        line->clear();
    return c != EOF || !line->empty() || *tooLong;
}

} // namespace

Log fromRows(const std::vector<TrendCsv::Row>& rows, long skipped)
{
    Log log;
    log.rows = long(rows.size());
    log.skipped = skipped;
    if (rows.empty())
        return log;
    log.firstMs = log.lastMs = rows.front().msSinceEpoch;
    log.utcOffsetSeconds = rows.front().utcOffsetSeconds;
    for (const TrendCsv::Row& row : rows) {
        if (row.msSinceEpoch < log.firstMs)
            log.utcOffsetSeconds = row.utcOffsetSeconds;
        log.firstMs = std::min(log.firstMs, row.msSinceEpoch);
        log.lastMs = std::max(log.lastMs, row.msSinceEpoch);
    }
    const int64_t usual = usualStep(rows);
    std::vector<std::vector<TrendStats::Point> > all;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (!plotted(rows[i])) {
            ++log.withoutReading;
            continue;
        }
        Series* s = seriesOf(&log, rows[i].wavelength);
        if (i == 0 || !continues(rows[i - 1], rows[i], usual) || s->runs.empty())
            s->runs.push_back(std::vector<TrendStats::Point>());
        const TrendStats::Point p = { (rows[i].msSinceEpoch - log.firstMs) / 1000.0,
                                      rows[i].number };
        s->runs.back().push_back(p);
    }
    for (Series& s : log.series) {
        std::vector<TrendStats::Point> points;
        for (const auto& run : s.runs)
            points.insert(points.end(), run.begin(), run.end());
        s.summary = TrendStats::summarize(points);
    }
    return log;
}

bool read(const std::string& path, Log* log)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return false;
    std::vector<TrendCsv::Row> rows;
    long skipped = 0;
    std::string line;
    bool tooLong;
    while (readLine(file, &line, &tooLong)) {
        TrendCsv::Row row;
        if (TrendCsv::parseRow(line, &row))
            rows.push_back(row);
        else if (tooLong || (!line.empty() && line != TrendCsv::kHeader))
            ++skipped;
    }
    std::fclose(file);
    *log = fromRows(rows, skipped);
    return true;
}

} // namespace TrendSeries
