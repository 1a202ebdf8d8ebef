#include "shellOptions.h"

#include <QMap>

namespace {

const double kMaxSeconds = 24 * 3600;

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

bool parseLanguageAt(const QString& text, ShellOptions::LanguageSwitch* change)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    if (colon <= 0 || colon == text.size() - 1)
        return false;
    change->code = text.mid(colon + 1);
    return parseSeconds(text.left(colon), &change->seconds);
}

namespace {

// The options, for the help text and for telling those with a value from those without.
struct OptionSpec
{
    const char* name;
    const char* value; // 0: a switch
    const char* help;
};

const OptionSpec kOptions[] = {
    { "plugin", "path", "The plug-in file to load." },
    { "screenshot", "file", "Grab the frame into this PNG file." },
    { "screenshot-after", "seconds", "When to take --screenshot (default 2)." },
    { "screenshot-at", "seconds:file",
      "Grab the frame, with any dialog open above it, at that moment; may be given several "
      "times." },
    { "key-at", "seconds:key",
      "Press and release a key at that moment, as the set's keys do: to the focus widget of "
      "the active modal window, else of the active window. KEY as Qt writes it (F1, Return, "
      "Ctrl+Tab, S, -); may be given several times." },
    { "lang", "code",
      "Install the plug-in's translation opm_CODE.qm (from the plug-in's folder) before the "
      "start, as the set's shell does for its language (de, es, fr, ru, zh_CN; en: none)." },
    { "lang-at", "seconds:code",
      "Switch to that language at that moment, while the page runs; may be given several "
      "times." },
    { "quit-after", "seconds", "Stop, terminate and quit after that long." },
    { "autostart", 0, "Start the plug-in at once." },
};

const OptionSpec* findOption(const QString& name)
{
    for (const OptionSpec& option : kOptions) {
        if (name == QLatin1String(option.name))
            return &option;
    }
    return 0;
}

QString usageText()
{
    QString text = QString::fromLatin1(
        "Usage: opmshell [options]\n"
        "Stand-in for the set's application shell: verifies, loads and drives an application "
        "plug-in in an 800 x 480 frame.\n\nOptions:\n"
        "  -h, --help\n      Show this help.\n");
    for (const OptionSpec& option : kOptions) {
        text += QString::fromLatin1("  --%1").arg(QLatin1String(option.name));
        if (option.value)
            text += QString::fromLatin1(" <%1>").arg(QLatin1String(option.value));
        text += QString::fromLatin1("\n      %1\n").arg(QLatin1String(option.help));
    }
    return text;
}

} // namespace

// Written by hand rather than with QCommandLineParser, which Qt 4 lacks. Options are
// "--name value" or "--name=value"; the last of a single option wins.
bool ShellOptions::parse(const QStringList& arguments, QString* error)
{
    QMap<QString, QStringList> values;
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument == QLatin1String("-h") || argument == QLatin1String("--help")) {
            helpText = usageText();
            return true;
        }
        if (!argument.startsWith(QLatin1String("--"))) {
            *error = QString::fromLatin1("unexpected argument \"%1\"").arg(argument);
            return false;
        }
        const int equals = argument.indexOf(QLatin1Char('='));
        const QString name = argument.mid(2, equals < 0 ? -1 : equals - 2);
        const OptionSpec* option = findOption(name);
        if (!option) {
            *error = QString::fromLatin1("Unknown option '%1'.").arg(name);
            return false;
        }
        if (!option->value) {
            values[name].append(QString());
            continue;
        }
        if (equals >= 0) {
            values[name].append(argument.mid(equals + 1));
        } else if (i + 1 < arguments.size()) {
            values[name].append(arguments.at(++i));
        } else {
            *error = QString::fromLatin1("Missing value after '%1'.").arg(argument);
            return false;
        }
    }

    const QStringList pluginValues = values.value(QString::fromLatin1("plugin"));
    if (!pluginValues.isEmpty())
        plugin = pluginValues.last();
    autostart = values.contains(QString::fromLatin1("autostart"));
    if (plugin.isEmpty()) {
        *error = QString::fromLatin1("--plugin is required");
        return false;
    }
    const QStringList quit = values.value(QString::fromLatin1("quit-after"));
    if (!quit.isEmpty() && !parseSeconds(quit.last(), &quitAfter)) {
        *error = QString::fromLatin1("bad --quit-after \"%1\"").arg(quit.last());
        return false;
    }
    const QStringList shotFile = values.value(QString::fromLatin1("screenshot"));
    if (!shotFile.isEmpty()) {
        Screenshot shot { 2.0, shotFile.last() };
        const QStringList after = values.value(QString::fromLatin1("screenshot-after"));
        if (!after.isEmpty() && !parseSeconds(after.last(), &shot.seconds)) {
            *error = QString::fromLatin1("bad --screenshot-after \"%1\"").arg(after.last());
            return false;
        }
        screenshots.append(shot);
    }
    for (const QString& value : values.value(QString::fromLatin1("screenshot-at"))) {
        Screenshot shot;
        if (!parseScreenshotAt(value, &shot)) {
            *error =
                QString::fromLatin1("bad --screenshot-at \"%1\" (want seconds:file)").arg(value);
            return false;
        }
        screenshots.append(shot);
    }
    for (const QString& value : values.value(QString::fromLatin1("key-at"))) {
        KeyPress press;
        if (!parseKeyAt(value, &press)) {
            *error = QString::fromLatin1("bad --key-at \"%1\" (want seconds:key)").arg(value);
            return false;
        }
        keys.append(press);
    }
    const QStringList lang = values.value(QString::fromLatin1("lang"));
    if (!lang.isEmpty())
        language = lang.last();
    for (const QString& value : values.value(QString::fromLatin1("lang-at"))) {
        LanguageSwitch change;
        if (!parseLanguageAt(value, &change)) {
            *error = QString::fromLatin1("bad --lang-at \"%1\" (want seconds:code)").arg(value);
            return false;
        }
        languageSwitches.append(change);
    }
    return true;
}
