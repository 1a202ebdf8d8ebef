#include "offsetBar.h"

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QPaintEvent>
#include <QPainter>
#include <QPen>
#include <QRegion>

#include <cmath>
#include <cstdio>

#include <math.h>

namespace {

const int kWidgetWidth = 255;
const int kWidgetHeight = 40;
const int kBarWidth = 245;
const int kBarHeight = 25;
const int kScaler = 36; // width of each out-of-range zone
const int kInRangeSpan = kBarWidth - 2 * kScaler; // pixels the whole range covers
const int kMarkerWidth = 5;
const int kMarkerHeight = 24;
const int kCentreX = 121;
const int kLabelBaseline = 37;
const int kLabelOffset = 10;
const int kFontPixelSize = 12;

const QColor kOutOfRangeColour(252, 223, 215, 255);
const QColor kInRangeColour(204, 255, 153, 255);

// Truncates toward zero after clamping into [low, high], so that no value (huge, infinite or
// NaN) reaches an undefined conversion.
int truncateInto(double value, int low, int high, int ifNaN)
{
    if (std::isnan(value))
        return ifNaN;
    return static_cast<int>(::fmax(double(low), ::fmin(double(high), ::trunc(value))));
}

QString limitLabel(double limit)
{
    char text[400]; // room for the largest double in "%.2f"
    snprintf(text, sizeof text, "%.2f", limit);
    return QString::fromLatin1(text);
}

// A part of the bar that the repaint does not reach would be clipped away whole: a moved marker
// repaints its old and new place only, where most parts are not.
void fillReached(QPainter& painter, const QRegion& reached, const QRect& part, const QColor& colour)
{
    if (reached.intersects(part))
        painter.fillRect(part, colour);
}

// The outline is drawn around the bar's rectangle, on its first and last rows and columns; a
// repaint that stays inside them (a moved marker) leaves it as it is.
bool reachesOutline(const QRegion& reached, const QRect& outline)
{
    return !outline.adjusted(1, 1, -1, -1).contains(reached.boundingRect());
}

// Where a marker at x is drawn; nothing for no marker.
QRect markerRect(int x) { return x < 0 ? QRect() : QRect(x, 1, kMarkerWidth, kMarkerHeight); }

} // namespace

OffsetBar::OffsetBar(QWidget* parent) : CWidget(parent), m_bLabelsFromLimits(false)
{
    // The bar paints every pixel of its rectangle itself, white as the reading panel it sits
    // on, so that a move of the marker repaints the bar alone and not the widgets beneath it.
    setAttribute(Qt::WA_OpaquePaintEvent);
    const QRect area = rect();
    m_nStartX = area.x();
    m_nStartY = area.y();
    m_nWidth = area.width();
    m_nHeight = area.height();
    m_sMaxValue = tr("10");
    m_sMinValue = tr("-60");
    m_fOffsetValue = 0.0;
    m_fMaxValue = 10.0;
    m_fMinValue = -60.0;
    m_fValueRage = ::trunc(std::fabs(m_fMaxValue - m_fMinValue));
    resize(kWidgetWidth, kWidgetHeight);
    clear();
}

OffsetBar::~OffsetBar() { }

// The page calls this on every tick: only a marker that moves or a label that changes repaints,
// and a marker that moves repaints where it was and where it is.
void OffsetBar::setRangedOffset(double lowwater, double highwater, double offset)
{
    const int markerBefore = markerX();
    const bool labelsChanged = setLimitLabels(lowwater, highwater);
    m_fOffsetValue = offset;
    m_fValueRage = highwater - lowwater;
    m_fMinValue = lowwater;
    m_fMaxValue = highwater;
    m_nPercentVal = percentOf(offset, lowwater, highwater);
    printf("________m_nPercentVal___%d_______\n", m_nPercentVal);
    const int markerAfter = markerX();
    if (labelsChanged) {
        update();
    } else if (markerAfter != markerBefore) {
        update(markerRect(markerBefore));
        update(markerRect(markerAfter));
    }
}

// Formats the labels only for limits other than the last ones (a NaN never equals them); true
// when they were formatted.
bool OffsetBar::setLimitLabels(double lowwater, double highwater)
{
    if (m_bLabelsFromLimits && lowwater == m_fMinValue && highwater == m_fMaxValue)
        return false;
    m_sMaxValue = limitLabel(highwater);
    m_sMinValue = limitLabel(lowwater);
    m_bLabelsFromLimits = true;
    return true;
}

// Any int and any difference of two ints is exact in a double, so this is the whole-number
// result without the overflow that int arithmetic would risk for far-apart limits.
void OffsetBar::setRangedOffset(int lowwater, int highwater, int offset)
{
    setRangedOffset(double(lowwater), double(highwater), double(offset));
}

void OffsetBar::clear()
{
    m_nPercentVal = 0;
    update();
}

// A NaN value or limit has no place on the bar: it goes to position 0, and markerX() puts it
// at the outer left end.
int OffsetBar::percentOf(double offset, double lowwater, double highwater)
{
    if (std::isnan(offset) || std::isnan(lowwater) || std::isnan(highwater))
        return 0;
    if (offset < lowwater)
        return 0;
    if (offset > highwater)
        return 100;
    if (offset == highwater)
        return 100; // also equal limits, where the range is zero
    return truncateInto((offset - lowwater) / (highwater - lowwater) * 100.0, 0, 100, 0);
}

// How far `to` lies beyond `from` on the in-range scale, in whole pixels. Clamped to a widget
// width either way, which is off the bar whatever the sign; an unknown distance counts as far.
int OffsetBar::pixelsBeyond(double from, double to) const
{
    if (to == from)
        return 0; // also both infinite, or a zero range
    const double distance = to - from;
    if (std::isnan(distance) || std::isnan(m_fValueRage))
        return kWidgetWidth;
    if (m_fValueRage == 0)
        return distance > 0 ? kWidgetWidth : -kWidgetWidth;
    return truncateInto(kInRangeSpan * distance / m_fValueRage, -kWidgetWidth, kWidgetWidth,
                        kWidgetWidth);
}

int OffsetBar::markerX() const
{
    int x = -1;
    if (m_nPercentVal > 0 && m_nPercentVal < 100) {
        x = static_cast<int>(m_nPercentVal * kInRangeSpan / 100.0 + kScaler);
    } else if (m_nPercentVal == 0) {
        const int d = pixelsBeyond(m_fOffsetValue, m_fMinValue);
        x = d < kScaler ? kScaler - d : 0;
    } else if (m_nPercentVal == 100) {
        const int d = pixelsBeyond(m_fMaxValue, m_fOffsetValue);
        x = d < kScaler ? kBarWidth - kScaler + d : kBarWidth - kMarkerWidth;
    }
    // Only a meaningless position (upside-down limits, or a value far off after clear()) puts
    // the marker beside the widget; it is then not drawn at all.
    if (x < 0 || x > kWidgetWidth - kMarkerWidth)
        return -1;
    return x;
}

void OffsetBar::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRegion& reached = event->region();
    painter.fillRect(rect(), Qt::white);

    // A pen of one pixel draws a rectangle one pixel wider and higher than its size.
    const QRect outline(0, 0, kBarWidth + 1, kBarHeight + 1);
    if (reachesOutline(reached, outline)) {
        painter.setPen(Qt::black);
        painter.drawRect(QRect(0, 0, kBarWidth, kBarHeight));
    }
    const int zoneHeight = kBarHeight - 2;
    fillReached(painter, reached, QRect(1, 1, kScaler, zoneHeight), kOutOfRangeColour);
    fillReached(painter, reached, QRect(kBarWidth - 1 - kScaler, 1, kScaler, zoneHeight),
                kOutOfRangeColour);
    fillReached(painter, reached, QRect(1 + kScaler, 1, kBarWidth - 2 - 2 * kScaler, zoneHeight),
                kInRangeColour);
    fillReached(painter, reached, QRect(kCentreX, 1, 1, kMarkerHeight), Qt::black);

    const QRect marker = markerRect(markerX());
    if (!marker.isNull())
        fillReached(painter, reached, marker, Qt::blue);

    // A moved marker repaints its old and new place only, above the labels: shaping the label
    // texts would cost more than all the rest, and so would choosing their font.
    if (!event->rect().intersects(QRect(0, kBarHeight, width(), height() - kBarHeight)))
        return;
    QFont font = QApplication::font();
    font.setPixelSize(kFontPixelSize);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QPoint(kScaler - kLabelOffset, kLabelBaseline), m_sMinValue);
    painter.drawText(QPoint(kBarWidth - kScaler - kLabelOffset, kLabelBaseline), m_sMaxValue);
}
