// Linked into the bench builds only (opm_bench, opmplugin_bench, opmfloor): notes when the
// window is first painted and when a label first shows a reading, prints one line with both
// times, the peak resident size and the widget count, and quits. The product and demo builds
// never contain it.
#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QLabel>
#include <QRegularExpression>
#include <QTimer>

#include <cstdio>
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
    QFile status(QStringLiteral("/proc/self/status"));
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

private:
    void notePaint(QWidget* widget)
    {
        if (m_firstPaint == 0)
            m_firstPaint = realtimeMicroseconds();
        auto* label = qobject_cast<QLabel*>(widget);
        if (m_done || !label || !isReading(label->text()))
            return;
        m_done = true;
        QWidget* window = label->window();
        // After this paint pass has reached the backing store.
        QTimer::singleShot(0, this, [this, window] { report(window); });
    }

    static bool isReading(const QString& text)
    {
        static const QRegularExpression reading(
            QStringLiteral("^-?[0-9]+\\.[0-9]+ (dBm|dB|mW|uW|dB/km|dB/mi)$"));
        return reading.match(text).hasMatch();
    }

    void report(QWidget* window)
    {
        const long long shown = realtimeMicroseconds();
        qApp->removeEventFilter(this);
        std::printf("bench-probe: first-paint-us=%lld first-reading-us=%lld vmhwm-kb=%lld "
                    "widgets=%d\n",
                    m_firstPaint, shown, peakResidentKb(),
                    int(window->findChildren<QWidget*>().size()) + 1);
        std::fflush(stdout);
        QCoreApplication::quit();
        // Not owned by the application: a plug-in's code may be gone when it is destroyed.
        deleteLater();
    }

    long long m_firstPaint = 0;
    bool m_done = false;
};

void installStartupProbe() { qApp->installEventFilter(new CStartupProbe); }

} // namespace

Q_COREAPP_STARTUP_FUNCTION(installStartupProbe)
