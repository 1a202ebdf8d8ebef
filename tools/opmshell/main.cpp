// opmshell: loads an application plug-in the way the set's shell does and drives it in a frame
// of the set's screen size.
#include "pluginLoader.h"
#include "shellFrame.h"
#include "shellOptions.h"
#include "utilinterface.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_signalPipe[2] = { -1, -1 };

void onQuitSignal(int)
{
    const char byte = 1;
    const ssize_t written = write(g_signalPipe[0], &byte, 1);
    (void)written;
}

// Ctrl-C and SIGTERM leave through the event loop, so that the plug-in is stopped as on a quit.
void quitOnSignals(QApplication* app)
{
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[1], QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, [app] {
        char byte;
        const ssize_t got = read(g_signalPipe[1], &byte, 1);
        (void)got;
        app->quit();
    });
    struct sigaction action = {};
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

void printIdentity(const QString& path, UtilInterface* plugin)
{
    std::printf("opmshell: loaded %s\n"
                "  id:      %s\n"
                "  name:    %s\n"
                "  version: %s\n"
                "  builder: %s\n",
        qPrintable(path), qPrintable(plugin->getPluginID()), qPrintable(plugin->getPluginName()),
        qPrintable(plugin->getPluginVersion()), qPrintable(plugin->getPluginBuilder()));
    std::fflush(stdout);
}

int milliseconds(double seconds)
{
    return int(seconds * 1000.0 + 0.5);
}

QStringList argumentList(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}

} // namespace

int main(int argc, char** argv)
{
    ShellOptions options;
    QString error;
    if (!options.parse(argumentList(argc, argv), &error)) {
        std::fprintf(stderr, "opmshell: %s (see --help)\n", qPrintable(error));
        return 2;
    }
    if (!options.helpText.isEmpty()) {
        std::fputs(qPrintable(options.helpText), stdout);
        return 0;
    }
    // Qt gets no options of ours; its own settings come from the environment (QT_QPA_PLATFORM).
    int qtArgc = 1;
    QApplication app(qtArgc, argv);
    app.setApplicationName(QStringLiteral("opmshell"));
    PluginLoader loader(options.plugin);
    if (!loader.load()) {
        std::fprintf(stderr, "opmshell: plug-in %s refused: %s\n", qPrintable(options.plugin),
            qPrintable(loader.errorString()));
        return 1;
    }
    printIdentity(options.plugin, loader.utilInterface());
    quitOnSignals(&app);

    bool screenshotsSaved = true;
    int status = 0;
    {
        ShellFrame frame(loader.rootObject(), loader.utilInterface());
        frame.move(0, 0);
        frame.show();
        QObject::connect(&app, &QCoreApplication::aboutToQuit, &frame, &ShellFrame::shutdownPlugin);
        if (options.autostart)
            QTimer::singleShot(0, &frame, &ShellFrame::startPlugin);
        // Precise timers: coarse ones may be 5 % late, enough to swap a key and a screenshot.
        for (const ShellOptions::Screenshot& shot : options.screenshots) {
            QTimer::singleShot(milliseconds(shot.seconds), Qt::PreciseTimer, &frame,
                [&frame, &screenshotsSaved, shot] {
                    screenshotsSaved = frame.saveScreenshot(shot.file) && screenshotsSaved;
                });
        }
        for (const ShellOptions::KeyPress& press : options.keys) {
            QTimer::singleShot(milliseconds(press.seconds), Qt::PreciseTimer, &frame,
                [&frame, press] { frame.pressKey(press.key); });
        }
        if (options.quitAfter >= 0)
            QTimer::singleShot(
                milliseconds(options.quitAfter), Qt::PreciseTimer, &app, &QCoreApplication::quit);
        status = app.exec();
    }
    // The frame, and with it the plug-in's window, has gone; the root object goes last.
    delete loader.rootObject();
    return status != 0 ? status : (screenshotsSaved ? 0 : 3);
}
