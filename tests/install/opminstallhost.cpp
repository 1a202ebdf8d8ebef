// The installed plug-in as the set's shell takes it: Qt's own QPluginLoader, the interface
// cast, start() inside a host frame; then waits until the Setup tab shows the reading the
// record holds. Used by scripts/install-test.sh on the unpacked bundle.
//   opminstallhost <plug-in file> <reading text> [time limit in ms]
#include "utilinterface.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPluginLoader>

#include <cstdio>

namespace {

int fail(const QString& why)
{
    std::fprintf(stderr, "opminstallhost: %s\n", qPrintable(why));
    return 1;
}

// The visible label that shows text, if any: how a host sees a reading (only the current tab's
// labels are visible, and of the Result tab's none shows a reading alone).
QLabel* readingLabel(QWidget* window, const QString& text)
{
    foreach (QLabel* label, window->findChildren<QLabel*>())
        if (label->text() == text && label->isVisible())
            return label;
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3)
        return fail(QString::fromLatin1("usage: opminstallhost <plug-in> <reading> [ms]"));
    const QString reading = args.at(2);
    const int limitMs = args.size() > 3 ? args.at(3).toInt() : 20000;

    QPluginLoader loader(args.at(1));
    UtilInterface* plugin = qobject_cast<UtilInterface*>(loader.instance());
    if (!plugin)
        return fail(QString::fromLatin1("no UtilInterface through QPluginLoader: %1")
                        .arg(loader.errorString()));
    std::printf("opminstallhost: loaded %s through QPluginLoader\n",
                loader.instance()->metaObject()->className());

    QWidget frame;
    frame.setFixedSize(800, 480);
    frame.show();
    QWidget* window = plugin->start(&frame) ? qobject_cast<QWidget*>(plugin->getObject()) : 0;
    if (!window)
        return fail(QString::fromLatin1("start() failed or left no window"));

    QElapsedTimer clock;
    clock.start();
    while (!readingLabel(window, reading) && clock.elapsed() < limitMs)
        app.processEvents(QEventLoop::WaitForMoreEvents, 100);
    const bool shown = readingLabel(window, reading) != 0;
    plugin->stop();
    if (!shown)
        return fail(QString::fromLatin1("no \"%1\" on the Setup tab within %2 ms")
                        .arg(reading)
                        .arg(limitMs));
    std::printf("opminstallhost: the page shows \"%s\"\n", qPrintable(reading));
    return 0;
}
