// Linked into the bench builds only (opm_bench, opmplugin_bench, opmfloor_bench): notes when the
// window is first painted and when a label first shows a reading, prints one line with both
// times, the peak resident size and the widget count, and quits. The product and demo builds
// never contain it. With OPM_BENCH_STOP_AT_FIRST_PAINT set it reports and quits after the first
// paint pass instead, so that callgrind counts the instructions of the start-up alone. Qt 5
// runs it at the application's start-up; Qt 4 has no such hook, so there it joins at the first
// event the application delivers (a plug-in's when it is loaded).
#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QLabel>
#include <QRegExp>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

long long realtimeMicroseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<long long>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

// VmHWM of this process, in kB.
long long peakResidentKb()
{
    QFile status(QString::fromLatin1("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

class CStartupProbe : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && watched->isWidgetType())
            notePaint(static_cast<QWidget*>(watched));
        return false;
    }

protected:
    // After the paint pass that showed the reading has reached the backing store.
    void customEvent(QEvent*) override { report(); }

private:
    void notePaint(QWidget* widget)
    {
        if (m_firstPaint == 0) {
            m_firstPaint = realtimeMicroseconds();
            if (std::getenv("OPM_BENCH_STOP_AT_FIRST_PAINT")) {
                m_window = widget->window();
                QCoreApplication::postEvent(this, new QEvent(QEvent::User));
                return;
            }
        }
        auto* label = qobject_cast<QLabel*>(widget);
        if (m_window || !label || !isReading(label->text()))
            return;
        m_window = label->window();
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

    static bool isReading(const QString& text)
    {
        static const QRegExp reading(
            QString::fromLatin1("-?[0-9]+\\.[0-9]+ (dBm|dB|mW|uW|dB/km|dB/mi)"));
        return reading.exactMatch(text);
    }

    void report()
    {
        const long long shown = realtimeMicroseconds();
        qApp->removeEventFilter(this);
        std::printf("bench-probe: first-paint-us=%lld first-reading-us=%lld vmhwm-kb=%lld "
                    "widgets=%d\n",
                    m_firstPaint, shown, peakResidentKb(),
                    int(m_window->findChildren<QWidget*>().size()) + 1);
        std::fflush(stdout);
        QCoreApplication::quit();
        // Not owned by the application: a plug-in's code may be gone when it is destroyed.
        deleteLater();
    }

    long long m_firstPaint = 0;
    QWidget* m_window = nullptr;
};

void installStartupProbe() { qApp->installEventFilter(new CStartupProbe); }

} // namespace

#if QT_VERSION >= 0x050000
Q_COREAPP_STARTUP_FUNCTION(installStartupProbe)
#else
namespace {

bool joinAtFirstEvent(void**)
{
    if (!qApp)
        return false;
    QInternal::unregisterCallback(QInternal::EventNotifyCallback, joinAtFirstEvent);
    installStartupProbe();
    return false;
}

const bool s_registered =
    QInternal::registerCallback(QInternal::EventNotifyCallback, joinAtFirstEvent);

} // namespace
#endif
