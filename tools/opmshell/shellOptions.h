#ifndef SHELLOPTIONS_H
#define SHELLOPTIONS_H

#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStringList>

// The stand-in's own command line; the plug-in itself takes no options. It is read before
// QApplication sees argv, which would take "--plugin" as one of its own options.
struct ShellOptions
{
    struct Screenshot
    {
        double seconds;
        QString file;
    };

    struct KeyPress
    {
        double seconds;
        QKeySequence key; // exactly one key, with its modifiers
    };

    QString plugin;
    QList<Screenshot> screenshots;
    QList<KeyPress> keys;
    struct LanguageSwitch
    {
        double seconds;
        QString code; // opm_<code>.qm beside the plug-in; "en": the texts as written
    };
    QString language; // installed before the start; empty: as written
    QList<LanguageSwitch> languageSwitches;
    double quitAfter = -1; // seconds; negative: run until closed
    bool autostart = false;
    QString helpText; // set when --help was asked for

    // False with a reason when the command line cannot be used.
    bool parse(const QStringList& arguments, QString* error);
};

// "2.5" -> 2.5 seconds; false for anything else than 0 to a day.
bool parseSeconds(const QString& text, double* seconds);
// "2.5:shot.png"
bool parseScreenshotAt(const QString& text, ShellOptions::Screenshot* shot);
// "3:F1", "4.5:Ctrl+Tab"
bool parseKeyAt(const QString& text, ShellOptions::KeyPress* press);

// "3:zh_CN"
bool parseLanguageAt(const QString& text, ShellOptions::LanguageSwitch* change);

#endif // SHELLOPTIONS_H
