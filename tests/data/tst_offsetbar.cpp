// The gauge: position and marker for values inside, at and beyond the limits, degenerate limits
// and values, labels, the trace, and what actually lands on the screen.
#include "offsetBar.h"
#include "stdoutCapture.h"

#include <QImage>
#include <QtTest>

#include <climits>
#include <cmath>
#include <limits>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const int kProbeY = 12; // a row through the zones, the centre tick and the marker

const QColor kPink(252, 223, 215);
const QColor kGreen(204, 255, 153);

QImage render(OffsetBar& bar) { return bar.grab().toImage(); }

// Left edge of the blue run on a row of the image, or -1; its width goes to *width.
int blueRunStart(const QImage& image, int y, int* width)
{
    int start = -1;
    *width = 0;
    for (int x = 0; x < image.width(); ++x) {
        if (image.pixelColor(x, y) != QColor(Qt::blue))
            continue;
        if (start < 0)
            start = x;
        ++*width;
    }
    return start;
}

void verifyPaintedMarker(OffsetBar& bar, int expectedX)
{
    int width = 0;
    const int start = blueRunStart(render(bar), kProbeY, &width);
    QCOMPARE(start, expectedX);
    QCOMPARE(width, expectedX < 0 ? 0 : 5);
}

bool hasDarkPixel(const QImage& image, const QRect& area)
{
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (qGray(image.pixel(x, y)) < 96)
                return true;
    return false;
}

} // namespace

class TestOffsetBar : public QObject
{
    Q_OBJECT
private slots:
    void afterConstruction();
    void position_data();
    void position();
    void wholeNumbers_data();
    void wholeNumbers();
    void labels_data();
    void labels();
    void clearKeepsLimitsAndValue_data();
    void clearKeepsLimitsAndValue();
    void everyUpdateTraces();
    void paintedZones();
};

void TestOffsetBar::afterConstruction()
{
    OffsetBar bar;
    QCOMPARE(bar.size(), QSize(255, 40));
    QCOMPARE(bar.percent(), 0);
    QCOMPARE(bar.markerX(), 184);
    QCOMPARE(bar.minLabel(), QStringLiteral("-60"));
    QCOMPARE(bar.maxLabel(), QStringLiteral("10"));
    verifyPaintedMarker(bar, 184);
}

void TestOffsetBar::position_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("markerX");

    QTest::newRow("lower limit") << -20.0 << -10.0 << -20.0 << 0 << 36;
    QTest::newRow("half a per cent in") << -20.0 << -10.0 << -19.95 << 0 << 36;
    QTest::newRow("one per cent in") << -20.0 << -10.0 << -19.9 << 1 << 37;
    QTest::newRow("middle") << -20.0 << -10.0 << -15.0 << 50 << 122;
    QTest::newRow("99 per cent") << -20.0 << -10.0 << -10.05 << 99 << 207;
    QTest::newRow("upper limit") << -20.0 << -10.0 << -10.0 << 100 << 209;
    QTest::newRow("1 below") << -20.0 << -10.0 << -21.0 << 0 << 19;
    QTest::newRow("3 below: outer left end") << -20.0 << -10.0 << -23.0 << 0 << 0;
    QTest::newRow("1 above") << -20.0 << -10.0 << -9.0 << 100 << 226;
    QTest::newRow("2 above: past 240") << -20.0 << -10.0 << -8.0 << 100 << 243;
    QTest::newRow("2.1 above: outer right end") << -20.0 << -10.0 << -7.9 << 100 << 240;
    QTest::newRow("far below") << -20.0 << -10.0 << -1e300 << 0 << 0;
    QTest::newRow("far above") << -20.0 << -10.0 << 1e300 << 100 << 240;
    QTest::newRow("tiny range, above") << 0.0 << 1e-300 << 1.0 << 100 << 240;

    QTest::newRow("equal limits, below") << -10.0 << -10.0 << -11.0 << 0 << 0;
    QTest::newRow("equal limits, just below") << -10.0 << -10.0 << -10.000001 << 0 << 0;
    QTest::newRow("equal limits, above") << -10.0 << -10.0 << -9.0 << 100 << 240;
    QTest::newRow("equal limits, equal") << -10.0 << -10.0 << -10.0 << 100 << 209;

    QTest::newRow("NaN value") << -20.0 << -10.0 << kNaN << 0 << 0;
    QTest::newRow("+inf value") << -20.0 << -10.0 << kInf << 100 << 240;
    QTest::newRow("-inf value") << -20.0 << -10.0 << -kInf << 0 << 0;
    QTest::newRow("NaN lower limit") << kNaN << -10.0 << -15.0 << 0 << 0;
    QTest::newRow("NaN upper limit") << -20.0 << kNaN << -15.0 << 0 << 0;
    QTest::newRow("infinite limits") << -kInf << kInf << 0.0 << 0 << 0;
    QTest::newRow("infinite value at infinite limit") << -20.0 << kInf << kInf << 100 << 209;
    QTest::newRow("upside-down limits: off the widget") << -10.0 << -20.0 << 0.0 << 100 << -1;
}

void TestOffsetBar::position()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, value);
    QFETCH(int, percent);
    QFETCH(int, markerX);

    OffsetBar bar;
    bar.setRangedOffset(low, high, value);
    QCOMPARE(bar.percent(), percent);
    QCOMPARE(bar.markerX(), markerX);
    verifyPaintedMarker(bar, markerX);
}

void TestOffsetBar::wholeNumbers_data()
{
    QTest::addColumn<int>("low");
    QTest::addColumn<int>("high");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("markerX");
    QTest::newRow("middle") << -20 << -10 << -15 << 50 << 122;
    QTest::newRow("1 below") << -20 << -10 << -21 << 0 << 19;
    QTest::newRow("1 above") << -20 << -10 << -9 << 100 << 226;
    QTest::newRow("equal limits, equal") << 5 << 5 << 5 << 100 << 209;
    QTest::newRow("equal limits, below") << 5 << 5 << 4 << 0 << 0;
    QTest::newRow("widest range") << INT_MIN << INT_MAX << 0 << 50 << 122;
    QTest::newRow("widest range, top") << INT_MIN << INT_MAX << INT_MAX << 100 << 209;
}

void TestOffsetBar::wholeNumbers()
{
    QFETCH(int, low);
    QFETCH(int, high);
    QFETCH(int, value);
    QFETCH(int, percent);
    QFETCH(int, markerX);

    OffsetBar bar;
    bar.setRangedOffset(low, high, value);
    QCOMPARE(bar.percent(), percent);
    QCOMPARE(bar.markerX(), markerX);
}

void TestOffsetBar::labels_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<QString>("minLabel");
    QTest::addColumn<QString>("maxLabel");
    QTest::newRow("limits off") << -60.0 << 10.0 << "-60.00" << "10.00";
    QTest::newRow("rounded to two decimals") << -20.456 << 0.004 << "-20.46" << "0.00";
    QTest::newRow("longer than 15 characters") << -1e15 << 1e15 << "-1000000000000000.00"
                                               << "1000000000000000.00";
    QTest::newRow("infinite") << -kInf << kInf << "-inf" << "inf";
}

void TestOffsetBar::labels()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(QString, minLabel);
    QFETCH(QString, maxLabel);

    OffsetBar bar;
    bar.setRangedOffset(low, high, 0.0);
    QCOMPARE(bar.minLabel(), minLabel);
    QCOMPARE(bar.maxLabel(), maxLabel);
}

void TestOffsetBar::clearKeepsLimitsAndValue_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("markerX");
    // After clear() the marker is placed from the lower limit, whatever side the value is on.
    QTest::newRow("middle") << -20.0 << -10.0 << -15.0 << 122;
    QTest::newRow("1 below") << -20.0 << -10.0 << -21.0 << 19;
    QTest::newRow("far above: off the widget") << -20.0 << -10.0 << 1e300 << -1;
    QTest::newRow("equal limits, above") << -10.0 << -10.0 << -9.0 << -1;
}

void TestOffsetBar::clearKeepsLimitsAndValue()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, value);
    QFETCH(int, markerX);

    OffsetBar bar;
    bar.setRangedOffset(low, high, value);
    const QString minLabel = bar.minLabel();
    const QString maxLabel = bar.maxLabel();
    StdoutCapture capture;
    bar.clear();
    const QByteArray out = capture.take();

    QCOMPARE(bar.percent(), 0);
    QCOMPARE(bar.markerX(), markerX);
    QCOMPARE(bar.minLabel(), minLabel);
    QCOMPARE(bar.maxLabel(), maxLabel);
    QVERIFY(capture.isValid());
    QCOMPARE(out, QByteArray());
    verifyPaintedMarker(bar, markerX);
}

void TestOffsetBar::everyUpdateTraces()
{
    OffsetBar bar;
    StdoutCapture capture;
    bar.setRangedOffset(-20.0, -10.0, -15.0);
    bar.setRangedOffset(-20.0, -10.0, -15.0);
    bar.setRangedOffset(-20, -10, -30);
    const QByteArray out = capture.take();

    QVERIFY(capture.isValid());
    QCOMPARE(out, QByteArray("________m_nPercentVal___50_______\n"
                             "________m_nPercentVal___50_______\n"
                             "________m_nPercentVal___0_______\n"));
}

void TestOffsetBar::paintedZones()
{
    OffsetBar bar;
    bar.setRangedOffset(-60.0, 10.0, 10.0); // marker at 209, clear of the probes below
    const QImage image = render(bar);

    QCOMPARE(image.size(), QSize(255, 40));
    QCOMPARE(image.pixelColor(0, kProbeY), QColor(Qt::black));     // outline
    QCOMPARE(image.pixelColor(60, 0), QColor(Qt::black));
    QCOMPARE(image.pixelColor(1, kProbeY), kPink);                 // lower zone
    QCOMPARE(image.pixelColor(36, kProbeY), kPink);
    QCOMPARE(image.pixelColor(37, kProbeY), kGreen);               // range
    QCOMPARE(image.pixelColor(120, kProbeY), kGreen);
    QCOMPARE(image.pixelColor(121, kProbeY), QColor(Qt::black));   // centre tick
    QCOMPARE(image.pixelColor(121, 24), QColor(Qt::black));
    QCOMPARE(image.pixelColor(207, kProbeY), kGreen);
    QCOMPARE(image.pixelColor(208, 1), kPink);                     // upper zone
    QCOMPARE(image.pixelColor(243, 23), kPink);
    QCOMPARE(image.pixelColor(60, 24), QColor(Qt::white));         // below the zones
    QCOMPARE(image.pixelColor(209, 24), QColor(Qt::blue));         // marker is 24 high
    QCOMPARE(image.pixelColor(209, 25), QColor(Qt::black));

    // "-60.00" from x = 26, "10.00" from x = 199, both on the baseline y = 37
    QVERIFY(hasDarkPixel(image, QRect(26, 27, 20, 11)));
    QVERIFY(hasDarkPixel(image, QRect(199, 27, 20, 11)));
    QVERIFY(!hasDarkPixel(image, QRect(80, 27, 100, 13)));
}

QTEST_MAIN(TestOffsetBar)
#include "tst_offsetbar.moc"
