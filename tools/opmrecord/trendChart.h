#ifndef TRENDCHART_H
#define TRENDCHART_H

#include <QRgb>

class QImage;

namespace TrendSeries {
struct Log;
}

// "opmrecord chart FILE.csv -o trend.png [--summary]": a trend log as an 800x480 picture, power
// against time with one line per wavelength, broken where there was no reading, and a legend
// with each wavelength's stability figures.
namespace TrendChart {

extern const char kUsage[];

// The colour of the index-th series (in the order of their first reading).
QRgb seriesColour(int index);

// The chart of a log; title names it (the file).
QImage paint(const TrendSeries::Log& log, const char* title);

// argv[0] is "chart". 0 when done, 1 when the log has no usable row or a file cannot be read or
// written, 2 on bad usage.
int run(int argc, char** argv);

} // namespace TrendChart

#endif // TRENDCHART_H
