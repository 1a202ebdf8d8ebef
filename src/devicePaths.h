#ifndef DEVICEPATHS_H
#define DEVICEPATHS_H

#include <QByteArray>
#include <QList>
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

// Runs a command through the shell; its exit status is of no interest to the application.
void runCommand(const QByteArray& command);

// Ids of the running processes whose program is the reader's file.
QList<int> readerProcesses();
// Runs the start command, then waits at most timeoutMs until a reader runs that did not run
// before: the shell returns at once and starts the reader later, and a kill before that would
// miss it. False when none came in time; true at once when there is no reader program to run.
bool startReader(int timeoutMs);

} // namespace DevicePaths

// The folder that stands for "/". Defined once per build: empty for the product, a folder of
// its own for the demo and for the tests.
const char* deviceRoot();

#endif // DEVICEPATHS_H
