// bench_ticks <page|floor|floor-look> <changing|unchanged|moving> <ticks> [--paints]
// Drives ticks of the Setup tab (inside the main page, as the program shows it) or of the floor
// page (floor-look: with the reading in the Setup tab's look) without waiting for the timer:
// each tick writes a reading into the shared record, calls the timer's slot and lets the
// backing store repaint what the tick changed (offscreen on Qt 5, on Xvfb on Qt 4). Run it
// under callgrind with 0 and with N ticks: the difference over N is the cost of one tick.
// --paints prints how many widgets each tick repainted, by class; --shot FILE saves what the
// offscreen screen shows after the ticks.
#include "floorPage.h"
#include "opmMain.h"
#include "qtCompat.h"
#include "testSupport.h"

#include <QApplication>
#include <QMap>
#include <QPixmap>
#include <QTimer>
#if QT_VERSION >= 0x050000
#include <QScreen>
#endif

#include <cstdio>
#include <memory>

namespace {

class CPaintCounter : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (m_counting && event->type() == QEvent::Paint)
            ++m_counts[QString::fromLatin1(watched->metaObject()->className())];
        return false;
    }
    QMap<QString, int> m_counts;
    bool m_counting = false;
};

// The live reader's way: "%.2f", changing by a hundredth of a dB (the bar's marker stays), or
// moving by 2 dB (the marker moves), or not at all.
QByteArray readingText(const QString& mode, int tick)
{
    double value = -11.80;
    if (mode == QLatin1String("changing"))
        value -= 0.01 * (tick % 20);
    else if (mode == QLatin1String("moving"))
        value -= 2.0 * (tick % 20);
    return QByteArray::number(value, 'f', 2);
}

void settle()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

void runTick(QObject* target, const char* slot, RecordWriter& reader, const QString& mode, int tick)
{
    reader.setReading("850", "dBm", readingText(mode, tick).constData());
    QMetaObject::invokeMethod(target, slot);
    QCoreApplication::processEvents();
}

// What the screen shows of the window.
QPixmap grabWindow(QWidget* window)
{
#if QT_VERSION >= 0x050000
    return window->screen()->grabWindow(window->winId());
#else
    return QPixmap::grabWindow(window->winId());
#endif
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    const QStringList programs = QStringList() << "page"
                                               << "floor"
                                               << "floor-look";
    if (args.size() < 4 || !programs.contains(args[1])) {
        std::fprintf(
            stderr,
            "usage: bench_ticks <page|floor|floor-look> <changing|unchanged|moving> <ticks> "
            "[--paints] [--shot FILE]\n");
        return 2;
    }
    const QString mode = args[2];
    const int ticks = args[3].toInt();

    TestDeviceRoot root;
    RecordWriter reader;
    reader.setReading("850", "dBm", readingText(mode, 0).constData());
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();

    CPaintCounter counter;
    if (args.contains("--paints"))
        app.installEventFilter(&counter);
    std::unique_ptr<QWidget> window;
    QObject* target = nullptr;
    const char* slot = nullptr;
    if (args[1] == "page") {
        window.reset(new COpmMainPage);
        target = window->findChild<NerioOpm*>();
        slot = "onTimer";
    } else {
        CFloorPage* floor = new CFloorPage(CFloorPage::kDefaultWidgetCount);
        if (args[1] == "floor-look")
            floor->showAsSetupTab();
        window.reset(floor);
        target = window.get();
        slot = "tick";
    }
    window->setGeometry(141, 61, 658, 398);
    window->show();
    // Qt 4 flushes to the X window once the server has mapped it, not before.
    if (!TestCompat::waitForShown(window.get()))
        return 1;
    settle();
    // The ticks are ours alone.
    for (QObject* child : target->children()) {
        if (QTimer* timer = qobject_cast<QTimer*>(child))
            timer->stop();
    }
    runTick(target, slot, reader, mode, 0); // the first reading lays the panel out
    settle();

    counter.m_counting = true;
    for (int i = 1; i <= ticks; ++i)
        runTick(target, slot, reader, mode, i);
    counter.m_counting = false;

    if (args.contains("--paints") && ticks > 0) {
        int total = 0;
        for (auto it = counter.m_counts.constBegin(); it != counter.m_counts.constEnd(); ++it) {
            const double perTick = double(it.value()) / ticks;
            std::fprintf(stderr, "paints %s %.2f\n", qPrintable(it.key()), perTick);
            total += it.value();
        }
        std::fprintf(stderr, "paints-per-tick %.2f\n", double(total) / ticks);
    }
    const int shot = args.indexOf(QString::fromLatin1("--shot"));
    if (shot > 0 && !grabWindow(window.get()).save(args.value(shot + 1)))
        return 1;
    return 0;
}
