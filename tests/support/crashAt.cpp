// Preloaded (LD_PRELOAD) into a program to end it the way a crash or a power cut would: with
// SIGKILL, at the Nth write, fsync, fdatasync or rename that touches a file below one folder.
//   CRASH_AT_DIR    the folder whose files count
//   CRASH_AT        N: killed instead of doing the Nth such call; 0: only counted
//   CRASH_AT_LOG    a file that gets one line per call, "<n> <call> <path>", before it is done
// Writes through stdio are counted too: a stream opened for writing below the folder writes
// through write() here. Standard output is line-buffered, so that a reader of it sees each line
// as it is printed. Programs this one starts do not inherit the library.
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

namespace {

// Plain data: set before any constructor of this library's objects could run.
const char* g_dir = "";
char g_realDir[PATH_MAX] = "";
long g_at = 0;
int g_log = -1;
std::atomic<long> g_calls(0);

template <typename F>
F real(const char* name)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

bool isBelow(const char* dir, const char* path)
{
    const size_t length = std::strlen(dir);
    return length > 0 && path && std::strncmp(path, dir, length) == 0
        && (path[length] == '/' || path[length] == '\0');
}

bool counts(const char* path) { return isBelow(g_dir, path) || isBelow(g_realDir, path); }

std::string pathOf(int fd)
{
    char link[64];
    char path[PATH_MAX];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    return std::string(path, length > 0 ? size_t(length) : 0);
}

// Counts a call on a file below the folder; the Nth never happens.
void step(const char* call, const std::string& path, bool below)
{
    if (!below)
        return;
    const long n = ++g_calls;
    if (g_log >= 0) {
        const std::string line = std::to_string(n) + ' ' + call + ' ' + path + '\n';
        static const auto rawWrite = real<ssize_t (*)(int, const void*, size_t)>("write");
        rawWrite(g_log, line.data(), line.size());
    }
    if (n == g_at)
        raise(SIGKILL);
}

} // namespace

__attribute__((constructor)) static void startCounting()
{
    const char* dir = std::getenv("CRASH_AT_DIR");
    g_dir = dir ? dir : "";
    if (!dir || !realpath(dir, g_realDir))
        g_realDir[0] = '\0';
    const char* at = std::getenv("CRASH_AT");
    g_at = at ? std::atol(at) : 0;
    const char* log = std::getenv("CRASH_AT_LOG");
    if (log)
        g_log = open(log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    unsetenv("LD_PRELOAD");
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}

namespace {

ssize_t cookieWrite(void* cookie, const char* data, size_t size)
{
    return write(int(reinterpret_cast<intptr_t>(cookie)), data, size);
}

int cookieClose(void* cookie) { return close(int(reinterpret_cast<intptr_t>(cookie))); }

// A stream whose writes go through write() below, for a file opened for writing ("w" modes).
FILE* countedStream(const char* path, const char* mode)
{
    const int flags = (mode[1] == '+' ? O_RDWR : O_WRONLY) | O_CREAT | O_TRUNC;
    const int fd = open(path, flags, 0666);
    if (fd < 0)
        return nullptr;
    cookie_io_functions_t io = {};
    io.write = cookieWrite;
    io.close = cookieClose;
    FILE* stream = fopencookie(reinterpret_cast<void*>(intptr_t(fd)), mode, io);
    if (!stream)
        close(fd);
    return stream;
}

} // namespace

extern "C" {

ssize_t write(int fd, const void* data, size_t size)
{
    static const auto next = real<ssize_t (*)(int, const void*, size_t)>("write");
    const std::string path = pathOf(fd);
    step("write", path, counts(path.c_str()));
    return next(fd, data, size);
}

int fsync(int fd)
{
    static const auto next = real<int (*)(int)>("fsync");
    const std::string path = pathOf(fd);
    step("fsync", path, counts(path.c_str()));
    return next(fd);
}

int fdatasync(int fd)
{
    static const auto next = real<int (*)(int)>("fdatasync");
    const std::string path = pathOf(fd);
    step("fdatasync", path, counts(path.c_str()));
    return next(fd);
}

int rename(const char* from, const char* to)
{
    static const auto next = real<int (*)(const char*, const char*)>("rename");
    if (from && to)
        step("rename", std::string(from) + " -> " + to, counts(from) || counts(to));
    return next(from, to);
}

FILE* fopen(const char* path, const char* mode)
{
    static const auto next = real<FILE* (*)(const char*, const char*)>("fopen");
    if (counts(path) && mode && mode[0] == 'w')
        return countedStream(path, mode);
    return next(path, mode);
}

FILE* fopen64(const char* path, const char* mode)
{
    static const auto next = real<FILE* (*)(const char*, const char*)>("fopen64");
    if (counts(path) && mode && mode[0] == 'w')
        return countedStream(path, mode);
    return next(path, mode);
}

} // extern "C"
