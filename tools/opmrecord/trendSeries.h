#ifndef TRENDSERIES_H
#define TRENDSERIES_H

#include "trendCsv.h"
#include "trendStats.h"

#include <string>
#include <vector>

#include <stdint.h>

// A trend log read back as one series of dBm readings per wavelength, broken into unbroken
// stretches: a stretch ends at a row without a reading, at a row of another wavelength and
// where samples are missing (a time step of more than three usual intervals, or going back).
namespace TrendSeries {

struct Series
{
    std::string wavelength;
    std::vector<std::vector<TrendStats::Point> > runs;
    TrendStats::Summary summary;
};

struct Log
{
    std::vector<Series> series; // in the order of their first reading
    long rows = 0; // usable rows
    long skipped = 0; // lines that are no trend log row (the header is none of these)
    long withoutReading = 0; // flag other than 1, no number, or not in dBm
    int64_t firstMs = 0; // earliest and latest usable row; points count from firstMs
    int64_t lastMs = 0;
    int32_t utcOffsetSeconds = 0; // of the earliest row: the chart shows the log's own times
};

// Lines longer than this are skipped without being kept.
const size_t kMaxLine = 1024;

// False when the file cannot be opened.
bool read(const std::string& path, Log* log);
Log fromRows(const std::vector<TrendCsv::Row>& rows, long skipped);

} // namespace TrendSeries

#endif // TRENDSERIES_H
