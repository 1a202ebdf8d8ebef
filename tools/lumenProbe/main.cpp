// lumenProbe, simulated: attaches the shared record of its working folder (the page starts it
// from its own folder, so both compute the same key) and keeps it current until told to end.
#include "fixedText.h"
#include "liveProbe.h"
#include "opmShareRecord.h"
#include "probeSignals.h"
#include "scenario.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include <sys/shm.h>
#include <unistd.h>

namespace {

const char kDeviceType[] = "SIM-OPM-1";
constexpr long kLoopSleepMs = 20;

struct Options
{
    std::string scenario;
    bool once = false;
};

void printUsage(std::FILE* out)
{
    std::fputs("usage: lumenProbe [--scenario FILE | --once]\n"
               "Simulated optical power reader for the shared record of the current folder.\n"
               "  (no option)       simulate a source and fibre link live until SIGTERM/SIGINT\n"
               "  --scenario FILE   play a timed file of record states (docs/lumenProbe.md)\n"
               "  --once            write one reading and exit\n"
               "Signals: USR1 save request, USR2 toggle not connected, HUP toggle no light.\n",
               out);
}

// 0: run, 1: bad usage, 2: help shown.
int parseOptions(int argc, char** argv, Options* options)
{
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            printUsage(stdout);
            return 2;
        } else if (arg == "--scenario" && i + 1 < argc) {
            options->scenario = argv[++i];
        } else if (arg == "--once") {
            options->once = true;
        } else {
            std::fprintf(stderr, "lumenProbe: unknown or incomplete option \"%s\"\n", argv[i]);
            printUsage(stderr);
            return 1;
        }
    }
    return 0;
}

long long nowMs()
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void pause(long ms)
{
    const struct timespec period = { 0, ms * 1000000L };
    nanosleep(&period, nullptr);
}

// A save key press is a request the page clears; it is only ever set here.
void forwardSaveKey(OpmShareRecord* record, int* seen)
{
    const int pressed = ProbeSignals::saveRequests();
    if (pressed != *seen) {
        *seen = pressed;
        record->needSave = 1;
    }
}

void announce(OpmShareRecord* record)
{
    record->pid = static_cast<int32_t>(getpid());
    FixedText::copy(record->deviceType, kDeviceType);
}

int runLive(OpmShareRecord* record)
{
    LiveProbe probe(record, static_cast<unsigned>(getpid()) ^ static_cast<unsigned>(time(nullptr)));
    probe.begin(nowMs());
    int saves = ProbeSignals::saveRequests();
    while (!ProbeSignals::stopRequested()) {
        forwardSaveKey(record, &saves);
        // An odd number of toggles since the start means "on".
        probe.setNotConnected(ProbeSignals::notConnectedToggles() % 2 != 0);
        probe.setNoLight(ProbeSignals::noLightToggles() % 2 != 0);
        probe.step(nowMs());
        pause(kLoopSleepMs);
    }
    return 0;
}

int runScenario(OpmShareRecord* record, const std::string& path)
{
    Scenario scenario;
    std::vector<std::string> problems;
    const bool loaded = scenario.load(path, &problems);
    for (const std::string& problem : problems)
        std::fprintf(stderr, "lumenProbe: %s\n", problem.c_str());
    if (!loaded)
        return 1;
    const long long start = nowMs();
    int saves = ProbeSignals::saveRequests();
    while (!ProbeSignals::stopRequested()) {
        forwardSaveKey(record, &saves);
        if (!scenario.play(record, nowMs() - start))
            return 0;
        pause(kLoopSleepMs);
    }
    return 0;
}

int runOnce(OpmShareRecord* record)
{
    LiveProbe probe(record, static_cast<unsigned>(getpid()));
    probe.begin(nowMs());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    const int parsed = parseOptions(argc, argv, &options);
    if (parsed != 0)
        return parsed == 2 ? 0 : 2;
    ProbeSignals::install();
    // Same key and segment as the page; IpcGetAddr ends the process when there is no key.
    char* addr = IpcGetAddr(Getkey());
    if (!isShareMemAttached(addr))
        return 1;
    auto* record = reinterpret_cast<OpmShareRecord*>(addr);
    announce(record);
    if (options.once)
        return runOnce(record);
    const int status =
        options.scenario.empty() ? runLive(record) : runScenario(record, options.scenario);
    // Gone means no reading; the segment itself stays for the page.
    record->flag = OpmFlagNoReading;
    shmdt(addr);
    return status;
}
