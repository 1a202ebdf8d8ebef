// Prints, follows and sets the shared record of the current folder's segment: the tool to
// look at when a reader or the page misbehaves.
#include "opmShareRecord.h"
#include "readerCheck.h"
#include "recordFields.h"
#include "trendChart.h"
#include "trendLog.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace {

volatile sig_atomic_t g_stop = 0;

void onStopSignal(int) { g_stop = 1; }

struct Options
{
    bool follow = false;
    long intervalMs = 500;
    std::vector<std::string> assignments;
};

void printUsage(std::FILE* out)
{
    std::fputs("usage: opmrecord [--follow [--interval MS]] [--set FIELD=VALUE ...]\n"
               "Prints the optical power meter's shared record of the current folder.\n"
               "  --follow          print one line per sample until Ctrl-C\n"
               "  --interval MS     sample period of --follow (20..60000, default 500)\n"
               "  --set F=V         set one field (repeatable); all are checked first\n"
               "Fields: wavelenth unit value flag pid deviceType wavelenthTarget needSave\n",
               out);
    std::fputs(ReaderCheck::kUsage, out);
    std::fputs(TrendLog::kUsage, out);
    std::fputs(TrendChart::kUsage, out);
}

// 0: run, 1: bad usage, 2: help shown.
int parseOptions(int argc, char** argv, Options* options)
{
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--help" || arg == "-h") {
            printUsage(stdout);
            return 2;
        } else if (arg == "--follow") {
            options->follow = true;
        } else if (arg == "--interval" && hasValue) {
            char* end = nullptr;
            options->intervalMs = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || options->intervalMs < 20 || options->intervalMs > 60000) {
                std::fprintf(stderr, "opmrecord: bad interval \"%s\"\n", argv[i]);
                return 1;
            }
        } else if (arg == "--set" && hasValue) {
            options->assignments.push_back(argv[++i]);
        } else {
            std::fprintf(stderr, "opmrecord: unknown or incomplete option \"%s\"\n", argv[i]);
            printUsage(stderr);
            return 1;
        }
    }
    return 0;
}

// Attaches the segment that already exists for this folder; never creates one.
OpmShareRecord* attachExisting()
{
    const key_t key = Getkey();
    if (key == -1)
        return nullptr;
    bool tooSmall = false;
    const int id = RecordFields::existingSegment(key, &tooSmall);
    if (tooSmall) {
        std::fprintf(stderr, "opmrecord: segment 0x%08x is too small for the record\n",
                     unsigned(key));
        return nullptr;
    }
    if (id == -1) {
        std::fprintf(stderr,
                     "opmrecord: no shared segment for this folder (key 0x%08x); "
                     "start the page or the reader here first\n",
                     unsigned(key));
        return nullptr;
    }
    void* addr = shmat(id, nullptr, 0);
    if (!isShareMemAttached(addr)) {
        std::perror("opmrecord: shmat");
        return nullptr;
    }
    return static_cast<OpmShareRecord*>(addr);
}

const char* flagMeaning(int32_t flag)
{
    switch (flag) {
    case OpmFlagNoReading:
        return " (no reading)";
    case OpmFlagReading:
        return " (reading)";
    case OpmFlagNotConnected:
        return " (not connected)";
    default:
        return " (shown as a reading, never saved)";
    }
}

const char* targetMeaning(int32_t target)
{
    static const char* const names[] = { " (850 nm)", " (1310 nm)", " (1490 nm)", " (1550 nm)",
                                         " (1625 nm)" };
    return target >= 0 && target < 5 ? names[target] : " (not a wavelength)";
}

void printRecord(const OpmShareRecord& record)
{
    for (const RecordFields::Field* f = RecordFields::begin(); f != RecordFields::end(); ++f) {
        std::string line = RecordFields::show(record, *f);
        if (std::strcmp(f->name, "flag") == 0)
            line += flagMeaning(record.flag);
        else if (std::strcmp(f->name, "wavelenthTarget") == 0)
            line += targetMeaning(record.wavelenthTarget);
        std::printf("%-16s @%-2zu %s\n", f->name, f->offset, line.c_str());
    }
}

void printLine(const OpmShareRecord& record)
{
    char stamp[32];
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    struct tm local;
    localtime_r(&now.tv_sec, &local);
    const size_t n = std::strftime(stamp, sizeof stamp, "%H:%M:%S", &local);
    std::snprintf(stamp + n, sizeof stamp - n, ".%03ld", now.tv_nsec / 1000000);
    std::string line = stamp;
    for (const RecordFields::Field* f = RecordFields::begin(); f != RecordFields::end(); ++f)
        line += std::string(" ") + f->name + "=" + RecordFields::show(record, *f);
    std::puts(line.c_str());
    std::fflush(stdout);
}

bool splitAssignment(const std::string& item, std::string* name, std::string* value)
{
    const size_t equals = item.find('=');
    if (equals == std::string::npos) {
        std::fprintf(stderr, "opmrecord: \"%s\" is not FIELD=VALUE\n",
                     RecordFields::escaped(item.data(), item.size()).c_str());
        return false;
    }
    *name = item.substr(0, equals);
    *value = item.substr(equals + 1);
    const RecordFields::Check result = RecordFields::check(*name, *value);
    if (result != RecordFields::Check::Ok) {
        std::fprintf(stderr, "opmrecord: %s\n",
                     RecordFields::describe(result, *name, *value).c_str());
        return false;
    }
    return true;
}

// Checks everything first so that one bad item leaves the record untouched.
bool applyAssignments(OpmShareRecord* record, const std::vector<std::string>& assignments)
{
    std::vector<std::pair<std::string, std::string> > items(assignments.size());
    for (size_t i = 0; i < assignments.size(); ++i) {
        if (!splitAssignment(assignments[i], &items[i].first, &items[i].second))
            return false;
    }
    for (const auto& item : items)
        RecordFields::set(record, item.first, item.second);
    return true;
}

void follow(const OpmShareRecord* record, long intervalMs)
{
    struct sigaction action = {};
    action.sa_handler = onStopSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    const struct timespec period = { intervalMs / 1000, (intervalMs % 1000) * 1000000L };
    while (!g_stop) {
        printLine(RecordFields::snapshot(record));
        nanosleep(&period, nullptr);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "check") == 0)
        return ReaderCheck::run(argc - 1, argv + 1);
    if (argc > 1 && std::strcmp(argv[1], "log") == 0)
        return TrendLog::run(argc - 1, argv + 1);
    if (argc > 1 && std::strcmp(argv[1], "chart") == 0)
        return TrendChart::run(argc - 1, argv + 1);
    Options options;
    const int parsed = parseOptions(argc, argv, &options);
    if (parsed != 0)
        return parsed == 2 ? 0 : 2;
    OpmShareRecord* record = attachExisting();
    if (!record)
        return 1;
    if (!applyAssignments(record, options.assignments))
        return 2;
    if (options.follow)
        follow(record, options.intervalMs);
    else
        printRecord(RecordFields::snapshot(record));
    shmdt(record);
    return 0;
}
