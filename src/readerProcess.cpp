#include "readerProcess.h"

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

// How often a wait looks for the reader again.
const long kPollNs = 2000000;

// A start that gave up waiting: the readers that ran before it, and how long it waited.
bool g_startPending = false;
QList<int> g_beforePending;
int g_pendingTimeoutMs = 0;

bool readerIsExecutable()
{
    return access(QFile::encodeName(DevicePaths::readerProgram()).constData(), X_OK) == 0;
}

bool hasNewReader(const QList<int>& before)
{
    const QList<int> running = ReaderProcess::processes();
    for (int i = 0; i < running.size(); ++i) {
        if (!before.contains(running.at(i)))
            return true;
    }
    return false;
}

// Waits at most timeoutMs until a reader runs that is not in before.
bool waitForNewReader(const QList<int>& before, int timeoutMs)
{
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        if (hasNewReader(before))
            return true;
        if (waited.elapsed() >= timeoutMs)
            return false;
        const struct timespec pause = { 0, kPollNs };
        nanosleep(&pause, 0);
    }
}

// A process runs the reader when its program is the reader's file, the way the kill command
// finds it by path: the same device and inode.
bool runsProgram(long pid, const struct stat& reader)
{
    char exe[64];
    snprintf(exe, sizeof exe, "/proc/%ld/exe", pid);
    struct stat program;
    return stat(exe, &program) == 0 && program.st_dev == reader.st_dev
        && program.st_ino == reader.st_ino;
}

} // namespace

namespace ReaderProcess {

void runCommand(const QByteArray& command)
{
    const int status = system(command.constData());
    (void)status;
}

QList<int> processes()
{
    QList<int> pids;
    struct stat reader;
    if (stat(QFile::encodeName(DevicePaths::readerProgram()).constData(), &reader) != 0)
        return pids;
    DIR* proc = opendir("/proc");
    if (!proc)
        return pids;
    while (const struct dirent* entry = readdir(proc)) {
        char* end = 0;
        const long pid = strtol(entry->d_name, &end, 10);
        if (pid > 0 && *end == '\0' && runsProgram(pid, reader))
            pids.append(int(pid));
    }
    closedir(proc);
    return pids;
}

bool start(int timeoutMs)
{
    const QList<int> before = processes();
    runCommand(DevicePaths::startReaderCommand());
    if (!readerIsExecutable())
        return true;
    g_startPending = !waitForNewReader(before, timeoutMs);
    g_beforePending = before;
    g_pendingTimeoutMs = timeoutMs;
    return !g_startPending;
}

void kill()
{
    if (g_startPending)
        waitForNewReader(g_beforePending, g_pendingTimeoutMs);
    g_startPending = false;
    runCommand(DevicePaths::killReaderCommand());
}

} // namespace ReaderProcess
