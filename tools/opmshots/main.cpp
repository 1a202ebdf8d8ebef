// opmshots [--scale N] --MODE DIR: renders widgets of the application to PNG files in DIR.
#include "shots.h"

#include <QApplication>
#include <QStringList>
#include <QTranslator>

#include <cstdio>
#include <cstring>

namespace {

const ShotMode kModes[] = {
    { "--offsetbar", "the offset bar for limits -20/-10 at values -15 and -21", shootOffsetBar },
    { "--setup", "the Setup tab: Power Meter, the reference dialog, Loss Meter (use --scale 1)",
      shootSetup },
};

int usage()
{
    fprintf(stderr, "usage: opmshots [--scale N] [--lang CODE] MODE DIR\nmodes:\n");
    for (const ShotMode& mode : kModes)
        fprintf(stderr, "  %-14s %s\n", mode.option, mode.description);
    return 2;
}

const ShotMode* findMode(const QString& option)
{
    for (const ShotMode& mode : kModes)
        if (option == QLatin1String(mode.option))
            return &mode;
    return nullptr;
}

} // namespace

int main(int argc, char* argv[])
{
    // Pictures only go to files, so no display is ever needed (Qt 4 has no offscreen platform:
    // run it under xvfb-run there).
    if (qgetenv("QT_QPA_PLATFORM").isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    QStringList args = app.arguments().mid(1);
    ShotOptions options;
    QTranslator translator;
    while (args.size() >= 2 && args.at(0).startsWith(QLatin1String("--"))) {
        if (args.at(0) == QLatin1String("--scale")) {
            bool ok = false;
            options.scale = args.at(1).toInt(&ok);
            if (!ok || options.scale < 1 || options.scale > 16)
                return usage();
        } else if (args.at(0) == QLatin1String("--lang")) {
            // The plug-in's translation as the build made it (de, es, fr, ru, zh_CN).
            options.lang = args.at(1);
            if (!translator.load(QLatin1String("opm_") + options.lang, QLatin1String(OPM_QM_DIR)))
                return usage();
            app.installTranslator(&translator);
        } else {
            break;
        }
        args = args.mid(2);
    }
    const ShotMode* mode = args.size() == 2 ? findMode(args.at(0)) : nullptr;
    if (!mode)
        return usage();
    options.dir = QDir(args.at(1));
    if (!options.dir.mkpath(QString::fromLatin1("."))) {
        fprintf(stderr, "opmshots: cannot create %s\n", qPrintable(args.at(1)));
        return 1;
    }
    return mode->shoot(options);
}
