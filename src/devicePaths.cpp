#include "devicePaths.h"

#include <QElapsedTimer>
#include <QFile>

#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

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

void runCommand(const QByteArray& command)
{
    const int status = system(command.constData());
    (void)status;
}

// A process runs the reader when its program is the reader's file, the way the kill command
// finds it by path: the same device and inode.
QList<int> readerProcesses()
{
    QList<int> pids;
    struct stat reader;
    if (stat(QFile::encodeName(readerProgram()).constData(), &reader) != 0)
        return pids;
    DIR* proc = opendir("/proc");
    if (!proc)
        return pids;
    while (const struct dirent* entry = readdir(proc)) {
        char* end = 0;
        const long pid = strtol(entry->d_name, &end, 10);
        if (pid <= 0 || *end != '\0')
            continue;
        char exe[64];
        snprintf(exe, sizeof exe, "/proc/%ld/exe", pid);
        struct stat program;
        if (stat(exe, &program) == 0 && program.st_dev == reader.st_dev
            && program.st_ino == reader.st_ino)
            pids.append(int(pid));
    }
    closedir(proc);
    return pids;
}

bool startReader(int timeoutMs)
{
    const QList<int> before = readerProcesses();
    runCommand(startReaderCommand());
    if (access(QFile::encodeName(readerProgram()).constData(), X_OK) != 0)
        return true;
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        const QList<int> running = readerProcesses();
        for (int i = 0; i < running.size(); ++i) {
            if (!before.contains(running.at(i)))
                return true;
        }
        if (waited.elapsed() >= timeoutMs)
            return false;
        const struct timespec pause = { 0, 2000000 };
        nanosleep(&pause, 0);
    }
}

} // namespace DevicePaths
