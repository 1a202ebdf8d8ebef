#ifndef SHOTS_H
#define SHOTS_H

#include <QDir>
#include <QString>

class QWidget;

struct ShotOptions
{
    QDir dir; // where the PNG files go
    int scale = 3; // each pixel becomes scale x scale pixels, so that details can be seen
    QString lang; // the plug-in's translation opm_<lang>.qm, and "-<lang>" in each file name
};

// One kind of picture, chosen by its option on the command line. A new kind is a function in a
// file of its own and one row in the table of main.cpp.
struct ShotMode
{
    const char* option;
    const char* description;
    int (*shoot)(const ShotOptions& options); // 0 when every file was written
};

// Renders widget as it would be painted now and writes it to options.dir/fileName.
bool saveShot(QWidget& widget, const ShotOptions& options, const QString& fileName);

int shootOffsetBar(const ShotOptions& options);
int shootSetup(const ShotOptions& options);

#endif // SHOTS_H
