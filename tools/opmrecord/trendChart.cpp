#include "trendChart.h"

#include "trendSeries.h"
#include "trendStats.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPolygonF>
#include <QString>
#include <QtGlobal>

#if QT_VERSION >= 0x050000
#include <QGuiApplication>
#else
#include <QApplication>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace TrendChart {

const char kUsage[] =
    "usage: opmrecord chart FILE.csv [-o TREND.png] [--summary]\n"
    "  draws a trend log (800x480 PNG) with each wavelength's min, max, mean, std and drift;\n"
    "  --summary prints those figures, a line per wavelength\n";

namespace {

const int kWidth = 800;
const int kHeight = 480;
const int kLegendLine = 18;
const int kLegendLines = 5; // more wavelengths are named as "and N more"
const QRgb kBackground = qRgb(0xfb, 0xfb, 0xf8);
const QRgb kInk = qRgb(0x22, 0x22, 0x22);
const QRgb kGrid = qRgb(0xdd, 0xdd, 0xd8);

struct Range
{
    double low;
    double high;
    double step;
};

// Maps the log's seconds and dBm into the plot rectangle.
struct Frame
{
    QRectF plot;
    Range time;
    Range power;

    double x(double seconds) const
    {
        return plot.left() + (seconds - time.low) / (time.high - time.low) * plot.width();
    }
    double y(double dBm) const
    {
        return plot.bottom() - (dBm - power.low) / (power.high - power.low) * plot.height();
    }
};

QString latin1(const std::string& text) { return QString::fromLatin1(text.c_str()); }

QFont pixelFont(int pixels, bool bold = false)
{
    QFont font;
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

// About six steps of 1, 2 or 5 times a power of ten over the readings, at least 0.1 dB.
Range powerRange(const TrendSeries::Log& log)
{
    double low = 0, high = 0;
    bool any = false;
    for (const TrendSeries::Series& s : log.series) {
        low = any ? std::min(low, s.summary.minimum) : s.summary.minimum;
        high = any ? std::max(high, s.summary.maximum) : s.summary.maximum;
        any = true;
    }
    if (!any)
        low = high = -10;
    const double middle = (low + high) / 2, half = std::max((high - low) * 0.55, 0.05);
    const double raw = 2 * half / 6, magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    double step = magnitude * 10;
    for (double m : { 1.0, 2.0, 5.0 }) {
        if (m * magnitude >= raw) {
            step = m * magnitude;
            break;
        }
    }
    const Range range = { std::floor((middle - half) / step) * step,
                          std::ceil((middle + half) / step) * step, step };
    // Readings near the limits of a double: an axis that still works.
    if (!std::isfinite(range.high - range.low) || !(range.step > 0))
        return { -10, 0, 2 };
    return range;
}

Range timeRange(const TrendSeries::Log& log)
{
    const double span = std::max((log.lastMs - log.firstMs) / 1000.0, 1.0);
    static const double steps[] = { 1,     2,     5,     10,    15,     30,    60,
                                    120,   300,   600,   900,   1800,   3600,  7200,
                                    10800, 21600, 43200, 86400, 172800, 604800 };
    double step = std::ceil(span / 8 / 604800) * 604800; // whole weeks beyond the table
    for (double s : steps) {
        if (span / s <= 8) {
            step = s;
            break;
        }
    }
    return { 0, span, step };
}

void drawPowerAxis(QPainter* p, const Frame& f)
{
    const int decimals = std::max(0, int(-std::floor(std::log10(f.power.step) + 1e-9)));
    p->setFont(pixelFont(12));
    for (double v = f.power.low; v <= f.power.high + f.power.step / 2; v += f.power.step) {
        const double y = f.y(v);
        p->setPen(QColor(kGrid));
        p->drawLine(QPointF(f.plot.left(), y), QPointF(f.plot.right(), y));
        p->setPen(QColor(kInk));
        p->drawText(QRectF(0, y - 8, f.plot.left() - 6, 16), Qt::AlignRight | Qt::AlignVCenter,
                    QString::number(v, 'f', decimals));
    }
    p->save();
    p->translate(14, f.plot.center().y());
    p->rotate(-90);
    p->setFont(pixelFont(13, true));
    p->drawText(QRectF(-60, -10, 120, 20), Qt::AlignCenter, QString::fromLatin1("dBm"));
    p->restore();
}

// The log's local time (as UTC plus its offset) of a point in seconds since the epoch.
struct tm logTime(double seconds, int32_t utcOffset)
{
    const time_t shifted = time_t(std::floor(seconds + 0.5)) + utcOffset;
    struct tm t;
    gmtime_r(&shifted, &t);
    return t;
}

// Ticks on whole steps of the log's local time.
void drawTimeAxis(QPainter* p, const Frame& f, const TrendSeries::Log& log)
{
    const double start = log.firstMs / 1000.0, startLocal = start + log.utcOffsetSeconds;
    const double firstTick = std::ceil(startLocal / f.time.step) * f.time.step - startLocal;
    const char* format = f.time.step >= 86400 ? "%m-%d" : f.time.step >= 60 ? "%H:%M" : "%H:%M:%S";
    char text[64];
    p->setFont(pixelFont(12));
    for (double s = firstTick; s <= f.time.high + 1e-6; s += f.time.step) {
        const double x = f.x(s);
        p->setPen(QColor(kGrid));
        p->drawLine(QPointF(x, f.plot.top()), QPointF(x, f.plot.bottom()));
        const struct tm tick = logTime(start + s, log.utcOffsetSeconds);
        std::strftime(text, sizeof text, format, &tick);
        p->setPen(QColor(kInk));
        p->drawText(QRectF(x - 40, f.plot.bottom() + 3, 80, 16), Qt::AlignCenter,
                    QString::fromLatin1(text));
    }
    const struct tm first = logTime(std::floor(start), log.utcOffsetSeconds);
    const int offset = std::abs(log.utcOffsetSeconds) / 60;
    const size_t n = std::strftime(text, sizeof text, "time from %Y-%m-%d %H:%M:%S", &first);
    std::snprintf(text + n, sizeof text - n, " (UTC%c%02d:%02d)",
                  log.utcOffsetSeconds < 0 ? '-' : '+', offset / 60, offset % 60);
    p->drawText(QRectF(f.plot.left(), f.plot.bottom() + 19, f.plot.width(), 16), Qt::AlignRight,
                QString::fromLatin1(text));
}

// Off the axis is drawn just outside the plot, where the clip ends it.
double clampY(const Frame& f, double y)
{
    return std::max(f.plot.top() - 10, std::min(f.plot.bottom() + 10, y));
}

void drawSeries(QPainter* p, const Frame& f, const TrendSeries::Series& s, QRgb colour)
{
    p->setPen(QPen(QColor(colour), 2));
    p->setBrush(QColor(colour));
    for (const auto& run : s.runs) {
        QPolygonF line;
        for (const TrendStats::Point& point : run)
            line << QPointF(f.x(point.seconds), clampY(f, f.y(point.value)));
        if (line.size() == 1)
            p->drawEllipse(line.first(), 2.0, 2.0);
        else
            p->drawPolyline(line);
    }
}

QString legendText(const TrendSeries::Series& s)
{
    const TrendStats::Summary& m = s.summary;
    const std::string drift =
        (m.driftPerHour >= 0 ? "+" : "") + TrendStats::figure(m.driftPerHour, 3);
    return latin1(TrendStats::wavelengthLabel(s.wavelength) + "   min "
                  + TrendStats::figure(m.minimum, 3) + "  max " + TrendStats::figure(m.maximum, 3)
                  + "  mean " + TrendStats::figure(m.mean, 3) + "  std "
                  + TrendStats::figure(m.deviation, 4) + " dB  drift " + drift
                  + " dB/h  n=" + std::to_string(m.count));
}

void drawLegend(QPainter* p, const TrendSeries::Log& log, int top)
{
    p->setFont(pixelFont(13));
    const int shown = std::min<int>(int(log.series.size()), kLegendLines);
    for (int i = 0; i < shown; ++i) {
        const int y = top + i * kLegendLine;
        p->setPen(QPen(QColor(seriesColour(i)), 4));
        p->drawLine(QPointF(70, y + 9), QPointF(92, y + 9));
        p->setPen(QColor(kInk));
        p->drawText(QRectF(100, y, kWidth - 110, kLegendLine), Qt::AlignLeft | Qt::AlignVCenter,
                    legendText(log.series[size_t(i)]));
    }
    if (log.series.size() > size_t(shown))
        p->drawText(QRectF(100, top + shown * kLegendLine, kWidth - 110, kLegendLine),
                    Qt::AlignLeft | Qt::AlignVCenter,
                    QString::fromLatin1("and %1 more wavelengths (--summary lists them)")
                        .arg(log.series.size() - size_t(shown)));
}

int legendLines(const TrendSeries::Log& log)
{
    const int lines = int(std::min<size_t>(log.series.size(), kLegendLines + 1));
    return std::max(lines, 1);
}

struct Options
{
    std::string path;
    std::string output;
    bool summary = false;
};

int usageError(const char* what, const char* arg)
{
    std::fprintf(stderr, "opmrecord chart: %s \"%s\"\n%s", what, arg, kUsage);
    return 2;
}

int parseOptions(int argc, char** argv, Options* o)
{
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-o" && i + 1 < argc && argv[i + 1][0] != '\0') {
            o->output = argv[++i];
        } else if (arg == "--summary") {
            o->summary = true;
        } else if (arg.compare(0, 1, "-") != 0 && o->path.empty() && !arg.empty()) {
            o->path = arg;
        } else {
            return usageError("unknown or incomplete option", argv[i]);
        }
    }
    if (o->path.empty())
        return usageError("no log given", "");
    if (o->output.empty() && !o->summary)
        return usageError("nothing to do: give -o TREND.png or --summary", "");
    return 0;
}

// Text needs a GUI application; without a display Qt 5 draws offscreen, Qt 4 as a console
// application (fonts come from fontconfig either way).
bool saveChart(const TrendSeries::Log& log, const Options& o, int argc, char** argv)
{
#if QT_VERSION >= 0x050000
    if (qgetenv("QT_QPA_PLATFORM").isEmpty() && !std::getenv("DISPLAY")
        && !std::getenv("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
#else
    QApplication app(argc, argv, QApplication::Tty);
#endif
    const std::string name = o.path.substr(o.path.find_last_of('/') + 1);
    if (paint(log, name.c_str()).save(QString::fromLocal8Bit(o.output.c_str()), "PNG"))
        return true;
    std::fprintf(stderr, "opmrecord chart: cannot write %s\n", o.output.c_str());
    return false;
}

} // namespace

QRgb seriesColour(int index)
{
    static const QRgb colours[] = { qRgb(0x1f, 0x5f, 0xbf), qRgb(0xd9, 0x5f, 0x02),
                                    qRgb(0x1b, 0x9e, 0x77), qRgb(0x8e, 0x3c, 0xb0),
                                    qRgb(0xc8, 0x1e, 0x3c), qRgb(0x66, 0x66, 0x66) };
    const int count = int(sizeof colours / sizeof colours[0]);
    return colours[((index % count) + count) % count];
}

QImage paint(const TrendSeries::Log& log, const char* title)
{
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(kBackground);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const int legendTop = kHeight - 8 - legendLines(log) * kLegendLine;
    Frame f;
    f.plot = QRectF(70, 34, kWidth - 90, legendTop - 42 - 34);
    f.time = timeRange(log);
    f.power = powerRange(log);

    p.setPen(QColor(kInk));
    p.setFont(pixelFont(15, true));
    p.drawText(QRectF(10, 6, kWidth - 20, 22), Qt::AlignLeft | Qt::AlignVCenter,
               QString::fromLatin1("Power trend: ") + QString::fromLocal8Bit(title));
    drawPowerAxis(&p, f);
    drawTimeAxis(&p, f, log);
    p.save();
    p.setClipRect(f.plot.adjusted(-3, -3, 3, 3));
    for (size_t i = 0; i < log.series.size(); ++i)
        drawSeries(&p, f, log.series[i], seriesColour(int(i)));
    p.restore();
    p.setPen(QColor(kInk));
    p.setBrush(Qt::NoBrush);
    p.drawRect(f.plot);
    if (log.series.empty()) {
        p.setFont(pixelFont(15));
        p.drawText(f.plot, Qt::AlignCenter, QString::fromLatin1("no readings in dBm in this log"));
    }
    drawLegend(&p, log, legendTop);
    return image;
}

int run(int argc, char** argv)
{
    Options o;
    if (parseOptions(argc, argv, &o) != 0)
        return 2;
    TrendSeries::Log log;
    if (!TrendSeries::read(o.path, &log)) {
        std::fprintf(stderr, "opmrecord chart: cannot read %s\n", o.path.c_str());
        return 1;
    }
    if (log.skipped > 0)
        std::fprintf(stderr, "opmrecord chart: %ld lines skipped (not a trend log row)\n",
                     log.skipped);
    if (log.rows == 0) {
        std::fprintf(stderr, "opmrecord chart: no trend log rows in %s\n", o.path.c_str());
        return 1;
    }
    if (o.summary) {
        for (const TrendSeries::Series& s : log.series)
            std::printf("%s\n", TrendStats::describe(s.wavelength, s.summary).c_str());
        std::printf("%ld rows, %ld without a reading in dBm\n", log.rows, log.withoutReading);
    }
    if (!o.output.empty() && !saveChart(log, o, argc, argv))
        return 1;
    return 0;
}

} // namespace TrendChart
