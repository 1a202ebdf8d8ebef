#include "shots.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <cstdio>

bool saveShot(QWidget& widget, const ShotOptions& options, const QString& fileName)
{
#if QT_VERSION >= 0x050000
    QImage image = widget.grab().toImage();
#else
    QImage image = QPixmap::grabWidget(&widget).toImage();
#endif
    if (options.scale > 1)
        image = image.scaled(image.size() * options.scale, Qt::IgnoreAspectRatio,
                             Qt::FastTransformation);
    QString name = fileName;
    if (!options.lang.isEmpty())
        name.insert(name.lastIndexOf(QLatin1Char('.')), QLatin1Char('-') + options.lang);
    const QString path = options.dir.filePath(name);
    if (!image.save(path, "PNG")) {
        fprintf(stderr, "opmshots: cannot write %s\n", qPrintable(path));
        return false;
    }
    printf("opmshots: wrote %s\n", qPrintable(path));
    return true;
}
