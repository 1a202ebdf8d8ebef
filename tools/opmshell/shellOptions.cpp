#include "shellOptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

constexpr double kMaxSeconds = 24 * 3600;

// The help text names the program through the application object, which does not exist yet:
// QApplication would need a display even for --help.
QString helpTextOf(const QCommandLineParser& parser)
{
    int argc = 1;
    char name[] = "opmshell";
    char* argv[] = { name, nullptr };
    QCoreApplication app(argc, argv);
    return parser.helpText();
}

} // namespace

bool parseSeconds(const QString& text, double* seconds)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !(value >= 0 && value <= kMaxSeconds))
        return false;
    *seconds = value;
    return true;
}

bool parseScreenshotAt(const QString& text, ShellOptions::Screenshot* shot)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    if (colon <= 0 || colon == text.size() - 1)
        return false;
    shot->file = text.mid(colon + 1);
    return parseSeconds(text.left(colon), &shot->seconds);
}

bool parseKeyAt(const QString& text, ShellOptions::KeyPress* press)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    if (colon <= 0 || colon == text.size() - 1)
        return false;
    press->key = QKeySequence::fromString(text.mid(colon + 1), QKeySequence::PortableText);
    // An unknown name still parses, as Key_unknown.
    if (press->key.count() != 1 || (press->key[0] & ~Qt::KeyboardModifierMask) == Qt::Key_unknown)
        return false;
    return parseSeconds(text.left(colon), &press->seconds);
}

bool ShellOptions::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stand-in for the set's application shell: verifies, loads and drives "
                       "an application plug-in in an 800 x 480 frame."));
    const QCommandLineOption helpOption(
        { QStringLiteral("h"), QStringLiteral("help") }, QStringLiteral("Show this help."));
    parser.addOption(helpOption);
    const QCommandLineOption pluginOption(QStringLiteral("plugin"),
        QStringLiteral("The plug-in file to load."), QStringLiteral("path"));
    const QCommandLineOption shotOption(QStringLiteral("screenshot"),
        QStringLiteral("Grab the frame into this PNG file."), QStringLiteral("file"));
    const QCommandLineOption shotAfterOption(QStringLiteral("screenshot-after"),
        QStringLiteral("When to take --screenshot (default 2)."), QStringLiteral("seconds"));
    const QCommandLineOption shotAtOption(QStringLiteral("screenshot-at"),
        QStringLiteral("Grab the frame, with any dialog open above it, at that moment; may be "
                       "given several times."),
        QStringLiteral("seconds:file"));
    const QCommandLineOption keyAtOption(QStringLiteral("key-at"),
        QStringLiteral("Press and release a key at that moment, as the set's keys do: to the "
                       "focus widget of the active modal window, else of the active window. "
                       "KEY as Qt writes it (F1, Return, Ctrl+Tab, S, -); may be given "
                       "several times."),
        QStringLiteral("seconds:key"));
    const QCommandLineOption quitOption(QStringLiteral("quit-after"),
        QStringLiteral("Stop, terminate and quit after that long."), QStringLiteral("seconds"));
    const QCommandLineOption autostartOption(
        QStringLiteral("autostart"), QStringLiteral("Start the plug-in at once."));
    parser.addOptions({ pluginOption, shotOption, shotAfterOption, shotAtOption, keyAtOption,
        quitOption, autostartOption });
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(helpOption)) {
        helpText = helpTextOf(parser);
        return true;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("unexpected argument \"%1\"")
                     .arg(parser.positionalArguments().first());
        return false;
    }

    plugin = parser.value(pluginOption);
    autostart = parser.isSet(autostartOption);
    if (plugin.isEmpty()) {
        *error = QStringLiteral("--plugin is required");
        return false;
    }
    if (parser.isSet(quitOption) && !parseSeconds(parser.value(quitOption), &quitAfter)) {
        *error = QStringLiteral("bad --quit-after \"%1\"").arg(parser.value(quitOption));
        return false;
    }
    if (parser.isSet(shotOption)) {
        Screenshot shot { 2.0, parser.value(shotOption) };
        if (parser.isSet(shotAfterOption)
            && !parseSeconds(parser.value(shotAfterOption), &shot.seconds)) {
            *error = QStringLiteral("bad --screenshot-after \"%1\"")
                         .arg(parser.value(shotAfterOption));
            return false;
        }
        screenshots.append(shot);
    }
    for (const QString& value : parser.values(shotAtOption)) {
        Screenshot shot;
        if (!parseScreenshotAt(value, &shot)) {
            *error = QStringLiteral("bad --screenshot-at \"%1\" (want seconds:file)").arg(value);
            return false;
        }
        screenshots.append(shot);
    }
    for (const QString& value : parser.values(keyAtOption)) {
        KeyPress press;
        if (!parseKeyAt(value, &press)) {
            *error = QStringLiteral("bad --key-at \"%1\" (want seconds:key)").arg(value);
            return false;
        }
        keys.append(press);
    }
    return true;
}
