#include "trendStats.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace TrendStats {

namespace {

double meanOf(const std::vector<Point>& points, double Point::*member)
{
    double sum = 0;
    for (const Point& p : points)
        sum += p.*member;
    return sum / double(points.size());
}

} // namespace

// Two passes around the means: the sums of squares stay small even over hours of readings.
Summary summarize(const std::vector<Point>& points)
{
    Summary s;
    s.count = points.size();
    if (points.empty())
        return s;
    s.minimum = s.maximum = points.front().value;
    s.mean = meanOf(points, &Point::value);
    const double meanTime = meanOf(points, &Point::seconds);
    double squares = 0, timeSquares = 0, products = 0;
    double first = points.front().seconds, last = first;
    for (const Point& p : points) {
        s.minimum = std::min(s.minimum, p.value);
        s.maximum = std::max(s.maximum, p.value);
        first = std::min(first, p.seconds);
        last = std::max(last, p.seconds);
        const double dv = p.value - s.mean, dt = p.seconds - meanTime;
        squares += dv * dv;
        timeSquares += dt * dt;
        products += dt * dv;
    }
    s.spanSeconds = last - first;
    if (s.count > 1)
        s.deviation = std::sqrt(squares / double(s.count - 1));
    if (timeSquares > 0)
        s.driftPerHour = products / timeSquares * 3600.0;
    return s;
}

std::string wavelengthLabel(const std::string& wavelength)
{
    const bool digits =
        !wavelength.empty() && wavelength.find_first_not_of("0123456789") == std::string::npos;
    return digits ? wavelength + " nm" : wavelength;
}

std::string clockSpan(double seconds)
{
    const long long whole = seconds > 0 ? (long long)(seconds + 0.5) : 0;
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                  whole % 60);
    return text;
}

std::string figure(double value, int decimals)
{
    char text[64];
    if (std::fabs(value) < 1e9)
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
    else
        std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}

std::string describe(const std::string& wavelength, const Summary& s)
{
    const std::string drift = (s.driftPerHour >= 0 ? "+" : "") + figure(s.driftPerHour, 4);
    return wavelengthLabel(wavelength) + ": " + std::to_string(s.count) + " readings over "
        + clockSpan(s.spanSeconds) + ", min " + figure(s.minimum, 3) + " max "
        + figure(s.maximum, 3) + " mean " + figure(s.mean, 3) + " std " + figure(s.deviation, 4)
        + " dB, drift " + drift + " dB/h";
}

} // namespace TrendStats
