// opmshell: loads an application plug-in the way the set's shell does and drives it in a frame
// of the set's screen size.
#include "pluginLoader.h"
#include "shellFrame.h"
#include "shellOptions.h"
#include "utilinterface.h"

#include <QApplication>
#include <QFileInfo>
#include <QKeySequence>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>
#include <QTranslator>

#include <csignal>
#include <cstdio>

#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_signalPipe[2] = { -1, -1 };

// Reads the byte a signal handler wrote and quits, inside the event loop.
class SignalQuitter : public QObject
{
    Q_OBJECT
public:
    explicit SignalQuitter(QApplication* app) : QObject(app), m_app(app) { }

public slots:
    void onSignal()
    {
        char byte;
        const ssize_t got = read(g_signalPipe[1], &byte, 1);
        (void)got;
        m_app->quit();
    }

private:
    QApplication* m_app;
};

// Qt 4's timers are all precise; Qt 5's coarse ones may be 5 % late, enough to swap a key and a
// screenshot.
void singleShot(int ms, QObject* receiver, const char* slot)
{
#if QT_VERSION >= 0x050000
    QTimer::singleShot(ms, Qt::PreciseTimer, receiver, slot);
#else
    QTimer::singleShot(ms, receiver, slot);
#endif
}

// The plug-in's texts in another language, as the set's shell installs them: opm_<code>.qm from
// the plug-in's folder; "en" the texts as written. The page retranslates on the change event.
bool useLanguage(const QString& pluginPath, const QString& code)
{
    static QTranslator* s_translator = nullptr;
    if (s_translator)
        QCoreApplication::removeTranslator(s_translator);
    if (code == QLatin1String("en"))
        return true;
    if (!s_translator)
        s_translator = new QTranslator(qApp);
    const QString folder = QFileInfo(pluginPath).absolutePath();
    if (!s_translator->load(QLatin1String("opm_") + code, folder)) {
        std::fprintf(stderr, "opmshell: no translation opm_%s.qm in %s\n", qPrintable(code),
                     qPrintable(folder));
        return false;
    }
    QCoreApplication::installTranslator(s_translator);
    return true;
}

// One timed screenshot or key press of the command line.
class TimedAction : public QObject
{
    Q_OBJECT
public:
    TimedAction(double seconds, ShellFrame* frame) : QObject(frame), m_frame(frame)
    {
        singleShot(int(seconds * 1000.0 + 0.5), this, SLOT(onTime()));
    }

    QString screenshot;
    QKeySequence key;
    QString language;
    QString plugin;
    static bool s_screenshotsSaved;

private slots:
    void onTime()
    {
        if (!language.isEmpty())
            useLanguage(plugin, language);
        else if (!screenshot.isEmpty())
            s_screenshotsSaved = m_frame->saveScreenshot(screenshot) && s_screenshotsSaved;
        else
            m_frame->pressKey(key);
    }

private:
    ShellFrame* m_frame;
};

bool TimedAction::s_screenshotsSaved = true;

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
    QObject::connect(notifier, SIGNAL(activated(int)), new SignalQuitter(app), SLOT(onSignal()));
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
                qPrintable(path), qPrintable(plugin->getPluginID()),
                qPrintable(plugin->getPluginName()), qPrintable(plugin->getPluginVersion()),
                qPrintable(plugin->getPluginBuilder()));
    std::fflush(stdout);
}

int milliseconds(double seconds) { return int(seconds * 1000.0 + 0.5); }

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
#ifdef Q_WS_QWS
    // Qt for Embedded Linux, as on the set: the shell is its own display server.
    QApplication app(qtArgc, argv, QApplication::GuiServer);
#else
    QApplication app(qtArgc, argv);
#endif
    app.setApplicationName(QString::fromLatin1("opmshell"));
    PluginLoader loader(options.plugin);
    if (!loader.load()) {
        std::fprintf(stderr, "opmshell: plug-in %s refused: %s\n", qPrintable(options.plugin),
                     qPrintable(loader.errorString()));
        return 1;
    }
    printIdentity(options.plugin, loader.utilInterface());
    if (!options.language.isEmpty() && !useLanguage(options.plugin, options.language))
        return 1;
    quitOnSignals(&app);

    int status = 0;
    {
        ShellFrame frame(loader.rootObject(), loader.utilInterface());
        frame.move(0, 0);
        frame.show();
        QObject::connect(&app, SIGNAL(aboutToQuit()), &frame, SLOT(shutdownPlugin()));
        if (options.autostart)
            QTimer::singleShot(0, &frame, SLOT(startPlugin()));
        for (const ShellOptions::Screenshot& shot : options.screenshots)
            (new TimedAction(shot.seconds, &frame))->screenshot = shot.file;
        for (const ShellOptions::KeyPress& press : options.keys)
            (new TimedAction(press.seconds, &frame))->key = press.key;
        for (const ShellOptions::LanguageSwitch& change : options.languageSwitches) {
            TimedAction* action = new TimedAction(change.seconds, &frame);
            action->language = change.code;
            action->plugin = options.plugin;
        }
        if (options.quitAfter >= 0)
            singleShot(milliseconds(options.quitAfter), &app, SLOT(quit()));
        status = app.exec();
    }
    // The frame, and with it the plug-in's window, has gone; the root object goes last.
    delete loader.rootObject();
    return status != 0 ? status : (TimedAction::s_screenshotsSaved ? 0 : 3);
}

#include "main.moc"
