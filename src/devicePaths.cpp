#include "devicePaths.h"

namespace {

const char kSettingDir[] = "/home/Setting";
const char kSettingFile[] = "/home/Setting/opmSetup.conf";
const char kResultDir[] = "/home/brova/brova-rslt/opm";
const char kReaderProgram[] = "/usr/local/brova/bin/lumenProbe";
const char kVendorInfoFile[] = "/usr/local/brova/lib/vendor-info.txt";
const char kReaderName[] = "lumenProbe";

bool isRooted() { return deviceRoot()[0] != '\0'; }

QString rooted(const char* path)
{
    return QString::fromLocal8Bit(deviceRoot()) + QLatin1String(path);
}

// A root folder may hold blanks, quotes or other shell characters; the fixed paths never do.
QByteArray shellPath(const char* path)
{
    if (!isRooted())
        return QByteArray(path);
    QByteArray quoted = QByteArray(deviceRoot()) + path;
    quoted.replace('\'', "'\\''");
    return '\'' + quoted + '\'';
}

} // namespace

namespace DevicePaths {

QString settingDir() { return rooted(kSettingDir); }
QString settingFile() { return rooted(kSettingFile); }
QString resultDir() { return rooted(kResultDir); }
QString readerProgram() { return rooted(kReaderProgram); }
QString vendorInfoFile() { return rooted(kVendorInfoFile); }

QByteArray makeSettingDirCommand() { return "mkdir " + shellPath(kSettingDir); }

QByteArray makeResultDirCommand() { return "mkdir -p " + shellPath(kResultDir); }

QByteArray startReaderCommand() { return shellPath(kReaderProgram) + " &"; }

// Under another root only the reader of that root is killed (by its file), so that tests and
// a demo running side by side leave each other's readers alone.
QByteArray killReaderCommand()
{
    return "killall -9 " + (isRooted() ? shellPath(kReaderProgram) : QByteArray(kReaderName));
}

} // namespace DevicePaths
