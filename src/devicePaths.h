#ifndef DEVICEPATHS_H
#define DEVICEPATHS_H

#include <QByteArray>
#include <QString>

// Every place on the set's file system that the application touches, and the shell commands
// that use them. All of them hang below deviceRoot(), which is empty in the product build.
namespace DevicePaths {

QString settingDir(); // "/home/Setting"
QString settingFile(); // "/home/Setting/opmSetup.conf"
QString resultDir(); // "/home/brova/brova-rslt/opm"
QString readerProgram(); // "/usr/local/brova/bin/lumenProbe"
QString vendorInfoFile(); // "/usr/local/brova/lib/vendor-info.txt"

QByteArray makeSettingDirCommand(); // "mkdir /home/Setting"
QByteArray makeResultDirCommand(); // "mkdir -p /home/brova/brova-rslt/opm"
QByteArray startReaderCommand(); // "/usr/local/brova/bin/lumenProbe &"
QByteArray killReaderCommand(); // "killall -9 lumenProbe"

} // namespace DevicePaths

// The folder that stands for "/". Defined once per build: empty for the product, a folder of
// its own for the demo and for the tests.
const char* deviceRoot();

#endif // DEVICEPATHS_H
