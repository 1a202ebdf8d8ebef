#include "trendLog.h"

#include "opmShareRecord.h"
#include "recordFields.h"
#include "trendCsv.h"
#include "trendStats.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TrendLog {

const char kUsage[] =
    "usage: opmrecord log FILE.csv [--interval MS] [--duration S] [--append]\n"
    "  writes one CSV row per sample (every 20..60000 ms, default 1000) until Ctrl-C,\n"
    "  SIGTERM or S seconds; an existing FILE is kept unless --append adds to it\n";

namespace {

volatile sig_atomic_t g_stop = 0;

void onStopSignal(int) { g_stop = 1; }

struct Options
{
    std::string path;
    long intervalMs = 1000;
    double durationSeconds = 0; // 0: until a signal
    bool append = false;
};

struct Counts
{
    long rows = 0;
    long withoutReading = 0;
    int64_t firstMs = 0;
    int64_t lastMs = 0;
};

int usageError(const char* what, const char* arg)
{
    std::fprintf(stderr, "opmrecord log: %s \"%s\"\n%s", what, arg, kUsage);
    return 2;
}

// 0: run, 2: bad usage.
int parseOptions(int argc, char** argv, Options* o)
{
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        char* end = nullptr;
        if (arg == "--interval" && hasValue) {
            o->intervalMs = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || o->intervalMs < 20 || o->intervalMs > 60000)
                return usageError("bad interval (20..60000 ms)", argv[i]);
        } else if (arg == "--duration" && hasValue) {
            o->durationSeconds = std::strtod(argv[++i], &end);
            if (end == argv[i] || *end != '\0' || !(o->durationSeconds > 0)
                || o->durationSeconds > 366 * 86400.0)
                return usageError("bad duration (seconds, up to a year)", argv[i]);
        } else if (arg == "--append") {
            o->append = true;
        } else if (arg.compare(0, 1, "-") != 0 && o->path.empty() && !arg.empty()) {
            o->path = arg;
        } else {
            return usageError("unknown or incomplete option", argv[i]);
        }
    }
    if (o->path.empty())
        return usageError("no file given", "");
    return 0;
}

// Attaches the existing segment; never creates one.
const OpmShareRecord* attach(int id)
{
    void* addr = shmat(id, nullptr, SHM_RDONLY);
    return isShareMemAttached(addr) ? static_cast<const OpmShareRecord*>(addr) : nullptr;
}

// A reader started anew may have made a new segment (after the old one was removed): follow it.
void followSegment(key_t key, int* id, const OpmShareRecord** record)
{
    const int now = RecordFields::existingSegment(key);
    if (now == -1 || now == *id)
        return;
    const OpmShareRecord* attached = attach(now);
    if (!attached)
        return;
    shmdt(*record);
    *record = attached;
    *id = now;
}

int64_t nowMs()
{
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return int64_t(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

TrendCsv::Row sample(const OpmShareRecord* live)
{
    const OpmShareRecord r = RecordFields::snapshot(live);
    TrendCsv::Row row;
    row.msSinceEpoch = nowMs();
    row.wavelength = TrendCsv::asciiText(r.wavelenth, sizeof r.wavelenth);
    row.unit = TrendCsv::asciiText(r.unit, sizeof r.unit);
    row.value = TrendCsv::asciiText(r.value, sizeof r.value);
    row.hasNumber = TrendCsv::parseNumber(row.value, &row.number);
    row.flag = r.flag;
    row.needSave = r.needSave;
    return row;
}

// Writes the line and waits until it is on disk.
bool writeLine(std::FILE* file, const std::string& line)
{
    return std::fputs((line + "\n").c_str(), file) >= 0 && std::fflush(file) == 0
        && fdatasync(fileno(file)) == 0;
}

// Opens the log: a new file, or with append the end of an existing one, where a row cut short
// (the power went) is ended first and the header is written only to an empty file.
std::FILE* openLog(const Options& o)
{
    const int flags = O_RDWR | O_CREAT | O_CLOEXEC | (o.append ? O_APPEND : O_EXCL);
    const int fd = open(o.path.c_str(), flags, 0644);
    if (fd == -1) {
        if (errno == EEXIST)
            std::fprintf(stderr,
                         "opmrecord log: %s exists; give --append to add to it, or another "
                         "name\n",
                         o.path.c_str());
        else
            std::fprintf(stderr, "opmrecord log: cannot write %s: %s\n", o.path.c_str(),
                         std::strerror(errno));
        return nullptr;
    }
    struct stat info;
    char last = '\n';
    const bool empty = fstat(fd, &info) == 0 && info.st_size == 0;
    if (!empty && pread(fd, &last, 1, info.st_size - 1) == 1 && last != '\n')
        (void)!write(fd, "\n", 1);
    std::FILE* file = fdopen(fd, "a");
    if (!file || (empty && !writeLine(file, TrendCsv::kHeader))) {
        std::fprintf(stderr, "opmrecord log: cannot write %s\n", o.path.c_str());
        file ? std::fclose(file) : close(fd);
        return nullptr;
    }
    return file;
}

void installStopSignals()
{
    struct sigaction action = {};
    action.sa_handler = onStopSignal; // no SA_RESTART: the sleep ends at once
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

void addMs(struct timespec* t, long ms)
{
    t->tv_sec += ms / 1000;
    t->tv_nsec += (ms % 1000) * 1000000L;
    if (t->tv_nsec >= 1000000000L) {
        t->tv_nsec -= 1000000000L;
        ++t->tv_sec;
    }
}

double secondsSince(const struct timespec& start)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec - start.tv_sec) + double(now.tv_nsec - start.tv_nsec) / 1e9;
}

void count(const TrendCsv::Row& row, Counts* counts)
{
    if (counts->rows++ == 0)
        counts->firstMs = row.msSinceEpoch;
    counts->lastMs = row.msSinceEpoch;
    counts->withoutReading += !row.isReading();
}

// Samples on a fixed beat of the monotonic clock; a late sample does not shift the next ones.
bool sampleLoop(const Options& o, key_t key, int id, std::FILE* file, Counts* counts)
{
    const OpmShareRecord* record = attach(id);
    if (!record) {
        std::perror("opmrecord log: shmat");
        return false;
    }
    struct timespec start, next;
    clock_gettime(CLOCK_MONOTONIC, &start);
    next = start;
    bool written = true;
    while (!g_stop && written
           && (o.durationSeconds <= 0 || secondsSince(start) < o.durationSeconds)) {
        followSegment(key, &id, &record);
        const TrendCsv::Row row = sample(record);
        written = writeLine(file, TrendCsv::formatRow(row));
        if (!written)
            std::fprintf(stderr, "opmrecord log: cannot write %s: %s\n", o.path.c_str(),
                         std::strerror(errno));
        if (written)
            count(row, counts);
        addMs(&next, o.intervalMs);
        while (!g_stop && clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr) == EINTR)
            ;
    }
    shmdt(record);
    return written;
}

void printSummary(const Options& o, const Counts& c)
{
    std::printf("opmrecord log: %ld rows, %ld without a reading, ", c.rows, c.withoutReading);
    if (c.rows > 0)
        std::printf("from %s to %s (%s), ", TrendCsv::formatTime(c.firstMs).c_str(),
                    TrendCsv::formatTime(c.lastMs).c_str(),
                    TrendStats::clockSpan((c.lastMs - c.firstMs) / 1000.0).c_str());
    std::printf("in %s\n", o.path.c_str());
    std::fflush(stdout);
}

} // namespace

int run(int argc, char** argv)
{
    Options options;
    if (parseOptions(argc, argv, &options) != 0)
        return 2;
    const key_t key = Getkey();
    const int id = key == -1 ? -1 : RecordFields::existingSegment(key);
    if (id == -1) {
        std::fprintf(stderr,
                     "opmrecord log: no shared segment for this folder (key 0x%08x); start the "
                     "page or the reader here first\n",
                     unsigned(key));
        return 1;
    }
    installStopSignals();
    std::FILE* file = openLog(options);
    if (!file)
        return 1;
    Counts counts;
    const bool written = sampleLoop(options, key, id, file, &counts);
    std::fclose(file);
    printSummary(options, counts);
    return written ? 0 : 1;
}

} // namespace TrendLog
