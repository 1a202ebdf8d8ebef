// brokenReader [--break RULE]: a power reader that keeps the shared record's contract, or breaks
// exactly one rule of it, for the reader check's tests. Rules: wrong-key, small-segment, no-nul,
// wavelength-unit, unit-case, comma-value, flag-3, slow, ignores-target, slow-retune, clears-save,
// saves-unasked, dies-at-once. It runs until it is killed.
#include "fixedText.h"
#include "opmShareRecord.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    const std::string broken = argc == 3 && std::string(argv[1]) == "--break" ? argv[2] : "";
    auto breaks = [&broken](const char* rule) { return broken == rule; };
    if (breaks("dies-at-once")) {
        std::fputs("brokenReader: optical module not found\n", stderr);
        return 3;
    }
    const size_t size = breaks("small-segment") ? sizeof(OpmShareRecord) : kOpmShareSegmentSize;
    const int id = shmget(ftok(".", breaks("wrong-key") ? 2 : 1), size, IPC_CREAT | 0666);
    void* address = id == -1 ? nullptr : shmat(id, nullptr, 0);
    if (!isShareMemAttached(address))
        return 1;
    // Nobody else will look for a segment of this key: gone once the reader is.
    if (breaks("wrong-key"))
        shmctl(id, IPC_RMID, nullptr);
    OpmShareRecord* record = static_cast<OpmShareRecord*>(address);
    FixedText::copy(record->deviceType, "TEST");
    if (breaks("no-nul"))
        std::memset(record->deviceType, 'X', sizeof record->deviceType);

    const char* const wavelengths[] = { "850", "1310", "1490", "1550", "1625" };
    const long periodMs = breaks("slow") ? 2500 : 200;
    // Ignoring the target is retuning for ever.
    const long retuneMs = breaks("slow-retune") ? 3000 : breaks("ignores-target") ? 1L << 30 : 100;
    int current = 0;
    long long settled = 0, nextWrite = 0;
    for (;;) {
        const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
                             std::chrono::steady_clock::now().time_since_epoch())
                             .count();
        const int target = record->wavelenthTarget;
        if (target >= 0 && target < 5 && target != current && now - settled >= retuneMs)
            current = target;
        if (target < 0 || target > 4 || target == current)
            settled = now;
        const std::string nm = breaks("wavelength-unit") ? "nm" : "";
        FixedText::copy(record->wavelenth, (wavelengths[current] + nm).c_str());
        FixedText::copy(record->unit, breaks("unit-case") ? "dbm" : "dBm");
        // The value is what the check watches being written over.
        if (now >= nextWrite) {
            FixedText::copy(record->value, breaks("comma-value") ? "-4,87" : "-4.87");
            nextWrite = now + periodMs;
        }
        record->flag = breaks("flag-3") ? 3 : OpmFlagReading;
        if (breaks("clears-save") || breaks("saves-unasked"))
            record->needSave = breaks("saves-unasked") ? 1 : 0;
        usleep(20000);
    }
}
