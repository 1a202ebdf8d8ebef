#include "shellOptions.h"

#include <QCommandLineParser>

namespace {

constexpr double kMaxSeconds = 24 * 3600;

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
        QStringLiteral("Grab the frame at that moment; may be given several times."),
        QStringLiteral("seconds:file"));
    const QCommandLineOption quitOption(QStringLiteral("quit-after"),
        QStringLiteral("Stop, terminate and quit after that long."), QStringLiteral("seconds"));
    const QCommandLineOption autostartOption(
        QStringLiteral("autostart"), QStringLiteral("Start the plug-in at once."));
    parser.addOptions(
        { pluginOption, shotOption, shotAfterOption, shotAtOption, quitOption, autostartOption });
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(helpOption)) {
        helpText = parser.helpText();
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
    return true;
}
