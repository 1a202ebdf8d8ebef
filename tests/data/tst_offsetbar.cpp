// The gauge: position and marker for values inside, at and beyond the limits, degenerate limits
// and values, clearing, labels, and where the marker lands on the screen.
#include "offsetBar.h"
#include "qtCompat.h"

#include <QImage>
#include <QtTest>

#include <climits>
#include <limits>

enum Update { Constructed, Doubles, Ints };

class TestOffsetBar : public QObject
{
    Q_OBJECT
private slots:
    void labelsAndClear();
    void position_data();
    void position();
    void repaint_data();
    void repaint();
};

void TestOffsetBar::labelsAndClear()
{
    OffsetBar bar;
    QCOMPARE(bar.minLabel(), QString::fromLatin1("-60"));
    QCOMPARE(bar.maxLabel(), QString::fromLatin1("10"));
    bar.setRangedOffset(-1e15, 1e15, 0.0); // longer than 15 characters
    QCOMPARE(bar.minLabel(), QString::fromLatin1("-1000000000000000.00"));
    QCOMPARE(bar.maxLabel(), QString::fromLatin1("1000000000000000.00"));

    // clear() keeps limits, value and labels: the marker is placed from the lower limit.
    bar.setRangedOffset(-20.0, -10.0, -15.0);
    bar.clear();
    QCOMPARE(bar.percent(), 0);
    QCOMPARE(bar.markerX(), 122);
    QCOMPARE(bar.minLabel(), QString::fromLatin1("-20.00"));
    QCOMPARE(bar.maxLabel(), QString::fromLatin1("-10.00"));

    // Limits equal to the constructor's still get labels of their own.
    OffsetBar fresh;
    fresh.setRangedOffset(-60.0, 10.0, 0.0);
    QCOMPARE(fresh.minLabel(), QString::fromLatin1("-60.00"));
    QCOMPARE(fresh.maxLabel(), QString::fromLatin1("10.00"));
}

void TestOffsetBar::position_data()
{
    QTest::addColumn<int>("update"); // which setRangedOffset, if any
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("markerX");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();

    QTest::newRow("after construction: position 0, value 0, limits -60 and 10")
            << int(Constructed) << 0.0 << 0.0 << 0.0 << 0 << 184;
    QTest::newRow("lower limit") << int(Doubles) << -20.0 << -10.0 << -20.0 << 0 << 36;
    QTest::newRow("half a per cent in") << int(Doubles) << -20.0 << -10.0 << -19.95 << 0 << 36;
    QTest::newRow("middle") << int(Doubles) << -20.0 << -10.0 << -15.0 << 50 << 122;
    QTest::newRow("upper limit") << int(Doubles) << -20.0 << -10.0 << -10.0 << 100 << 209;
    QTest::newRow("1 below") << int(Doubles) << -20.0 << -10.0 << -21.0 << 0 << 19;
    QTest::newRow("3 below: outer end") << int(Doubles) << -20.0 << -10.0 << -23.0 << 0 << 0;
    QTest::newRow("1 above") << int(Doubles) << -20.0 << -10.0 << -9.0 << 100 << 226;
    QTest::newRow("2 above: past 240") << int(Doubles) << -20.0 << -10.0 << -8.0 << 100 << 243;
    QTest::newRow("2.1 above: outer end") << int(Doubles) << -20.0 << -10.0 << -7.9 << 100 << 240;
    QTest::newRow("equal limits, below") << int(Doubles) << -10.0 << -10.0 << -11.0 << 0 << 0;
    QTest::newRow("equal limits, above") << int(Doubles) << -10.0 << -10.0 << -9.0 << 100 << 240;
    QTest::newRow("equal limits, equal") << int(Doubles) << -10.0 << -10.0 << -10.0 << 100 << 209;
    QTest::newRow("NaN value") << int(Doubles) << -20.0 << -10.0 << nan << 0 << 0;
    QTest::newRow("infinite value") << int(Doubles) << -20.0 << -10.0 << inf << 100 << 240;
    QTest::newRow("whole numbers, widest range")
            << int(Ints) << double(INT_MIN) << double(INT_MAX) << double(INT_MAX) << 100 << 209;
}

void TestOffsetBar::position()
{
    QFETCH(int, update);
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, value);
    QFETCH(int, percent);
    QFETCH(int, markerX);

    OffsetBar bar;
    if (update == Doubles)
        bar.setRangedOffset(low, high, value);
    else if (update == Ints)
        bar.setRangedOffset(int(low), int(high), int(value));
    QCOMPARE(bar.percent(), percent);
    QCOMPARE(bar.markerX(), markerX);
    // The blue marker, 5 pixels wide, starts where markerX() says.
    const QImage image = TestCompat::grab(&bar).toImage();
    QCOMPARE(QColor(image.pixel(markerX, 12)), QColor(Qt::blue));
    QVERIFY(markerX == 0 || QColor(image.pixel(markerX - 1, 12)) != QColor(Qt::blue));
}

class PaintCounter : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
    int paints = 0;
};

// The page updates the bar on every tick: only what shows differently may repaint it.
void TestOffsetBar::repaint_data()
{
    QTest::addColumn<QVector<double>>("before"); // low, high, value
    QTest::addColumn<QVector<double>>("after");
    QTest::addColumn<bool>("repainted");
    using Bar = QVector<double>;
    QTest::newRow("same reading") << Bar { -60, 10, -12.34 } << Bar { -60, 10, -12.34 } << false;
    QTest::newRow("reading moves less than a pixel")
            << Bar { -60, 10, -12.34 } << Bar { -60, 10, -12.35 } << false;
    QTest::newRow("marker moves") << Bar { -60, 10, -12 } << Bar { -60, 10, -5 } << true;
    QTest::newRow("further below the lower limit")
            << Bar { -20, -10, -21 } << Bar { -20, -10, -22 } << true;
    QTest::newRow("new limits, marker in place")
            << Bar { -60, 10, -25 } << Bar { -70, 0, -35 } << true;
}

void TestOffsetBar::repaint()
{
    QFETCH(QVector<double>, before);
    QFETCH(QVector<double>, after);
    QFETCH(bool, repainted);
#ifdef Q_WS_QWS
    // The embedded display server places a new window later and repaints it on its own
    // schedule; the count and the grab of the screen hold for a window system's windows.
    OPM_SKIP("repaints are counted on X11 and offscreen windows only");
#endif

    OffsetBar bar;
    bar.setRangedOffset(before[0], before[1], before[2]);
    bar.show();
    QVERIFY(TestCompat::waitForShown(&bar));
    QCoreApplication::processEvents();
    PaintCounter counter;
    bar.installEventFilter(&counter);
    bar.setRangedOffset(after[0], after[1], after[2]);
    QCoreApplication::processEvents();
    QCOMPARE(counter.paints > 0, repainted);

    // What the screen shows after the partial repaint is a bar drawn afresh.
    OffsetBar fresh;
    fresh.setRangedOffset(after[0], after[1], after[2]);
    const QImage shown = TestCompat::grabWindow(&bar).toImage();
    QCOMPARE(shown.convertToFormat(QImage::Format_RGB32),
             TestCompat::grab(&fresh).toImage().convertToFormat(QImage::Format_RGB32));
}

QTEST_MAIN(TestOffsetBar)
#include "tst_offsetbar.moc"
