#ifndef TRENDSTATS_H
#define TRENDSTATS_H

#include <cstddef>
#include <string>
#include <vector>

// The figures of a stability test over one wavelength's readings: no GUI, so the chart, the
// text summary and the tests share them.
namespace TrendStats {

struct Point
{
    double seconds; // from the log's first row
    double value; // dBm
};

struct Summary
{
    size_t count = 0;
    double minimum = 0;
    double maximum = 0;
    double mean = 0;
    double deviation = 0; // sample standard deviation (n - 1); 0 for fewer than two readings
    double driftPerHour = 0; // least-squares slope in dB per hour; 0 without a time span
    double spanSeconds = 0; // first to last reading
};

Summary summarize(const std::vector<Point>& points);

// One line: "1550 nm: 12 readings over 0:05:30, min -4.532 max ... drift +0.0310 dB/h".
std::string describe(const std::string& wavelength, const Summary& summary);

// A wavelength as shown: "1550 nm" when it is digits only, else the text itself.
std::string wavelengthLabel(const std::string& wavelength);

// A figure with so many decimals; beyond a billion in scientific notation, so that a line stays
// short whatever the log holds.
std::string figure(double value, int decimals);

// Seconds as h:mm:ss.
std::string clockSpan(double seconds);

} // namespace TrendStats

#endif // TRENDSTATS_H
