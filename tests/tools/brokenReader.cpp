// brokenReader [--break RULE]: a power reader that keeps the shared record's contract, or breaks
// exactly one rule of it, for the reader check's tests. Rules: wrong-key, small-segment, no-nul,
// wavelength-unit, unit-case, comma-value, flag-3, slow, ignores-target, slow-retune,
// clears-save, saves-unasked, dies-at-once.
#include "fixedText.h"
#include "opmShareRecord.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

namespace {

const char* const kWavelengths[] = { "850", "1310", "1490", "1550", "1625" };
volatile sig_atomic_t g_stop = 0;
std::string g_broken;

void onTerm(int) { g_stop = 1; }

long long nowMs()
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

bool breaks(const char* rule) { return g_broken == rule; }

// Each text is made whole first and then copied in, as a page may copy the record at any time.
template <size_t N>
void put(volatile char (&field)[N], const char* text)
{
    char whole[N] = {};
    FixedText::copy(whole, text);
    std::memcpy(const_cast<char*>(field), whole, N);
}

void writeReading(volatile OpmShareRecord* record, int wavelength, int count)
{
    char text[32];
    std::snprintf(text, sizeof text, breaks("wavelength-unit") ? "%snm" : "%s",
                  kWavelengths[wavelength]);
    put(record->wavelenth, text);
    put(record->unit, breaks("unit-case") ? "dbm" : "dBm");
    if (breaks("comma-value"))
        std::snprintf(text, sizeof text, "-4,%02d", 87 + count % 7);
    else
        std::snprintf(text, sizeof text, "%.2f", -4.87 - 0.01 * (count % 7));
    put(record->value, text);
    record->flag = breaks("flag-3") ? 3 : OpmFlagReading;
}

OpmShareRecord* attach()
{
    const key_t key = ftok(".", breaks("wrong-key") ? 2 : 1);
    const int id =
        shmget(key, breaks("small-segment") ? sizeof(OpmShareRecord) : kOpmShareSegmentSize,
               IPC_CREAT | 0666);
    void* address = id == -1 ? reinterpret_cast<void*>(-1) : shmat(id, nullptr, 0);
    // Nobody else will look for a segment of this key: gone once the reader is.
    if (breaks("wrong-key"))
        shmctl(id, IPC_RMID, nullptr);
    return isShareMemAttached(address) ? static_cast<OpmShareRecord*>(address) : nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--break") == 0)
        g_broken = argv[2];
    if (breaks("dies-at-once")) {
        std::fputs("brokenReader: optical module not found\n", stderr);
        return 3;
    }
    std::signal(SIGTERM, onTerm);
    volatile OpmShareRecord* record = attach();
    if (!record)
        return 1;
    record->pid = getpid();
    if (breaks("no-nul"))
        std::memset(const_cast<char*>(record->deviceType), 'X', sizeof record->deviceType);
    else
        put(record->deviceType, "TEST");

    const long periodMs = breaks("slow") ? 2500 : 200;
    const long retuneMs = breaks("slow-retune") ? 3000 : 100;
    int current = 0, switchTo = -1, count = 0;
    long long switchAt = 0, nextWrite = 0, nextRequest = 0;
    while (!g_stop) {
        const long long now = nowMs();
        const int target = record->wavelenthTarget;
        if (!breaks("ignores-target") && target >= 0 && target < 5 && target != current) {
            if (target != switchTo) {
                switchTo = target;
                switchAt = now + retuneMs;
            } else if (now >= switchAt) {
                current = target;
                nextWrite = now;
            }
        }
        if (now >= nextWrite) {
            writeReading(record, current, ++count);
            nextWrite = now + periodMs;
        }
        if (breaks("clears-save"))
            record->needSave = 0;
        if (breaks("saves-unasked") && now >= nextRequest) {
            record->needSave = 1;
            nextRequest = now + 500;
        }
        usleep(20000);
    }
    record->flag = OpmFlagNoReading;
    return 0;
}
