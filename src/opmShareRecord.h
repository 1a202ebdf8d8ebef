#ifndef OPMSHARERECORD_H
#define OPMSHARERECORD_H

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

// The record that the power reader and the page share, at the start of a 1024-byte System V
// segment. Its layout is that of the reader's 32-bit x86 build; both sides must agree on it
// byte for byte.
struct OpmShareRecord
{
    char wavelenth[8];
    char unit[8];
    char value[16];
    int32_t flag;
    int32_t pid;
    char deviceType[16];
    int32_t wavelenthTarget;
    int32_t needSave;
};

static_assert(offsetof(OpmShareRecord, wavelenth) == 0, "wavelenth at 0");
static_assert(offsetof(OpmShareRecord, unit) == 8, "unit at 8");
static_assert(offsetof(OpmShareRecord, value) == 16, "value at 16");
static_assert(offsetof(OpmShareRecord, flag) == 32, "flag at 32");
static_assert(offsetof(OpmShareRecord, pid) == 36, "pid at 36");
static_assert(offsetof(OpmShareRecord, deviceType) == 40, "deviceType at 40");
static_assert(offsetof(OpmShareRecord, wavelenthTarget) == 56, "wavelenthTarget at 56");
static_assert(offsetof(OpmShareRecord, needSave) == 60, "needSave at 60");
static_assert(sizeof(OpmShareRecord) == 64, "the shared record is 64 bytes");
static_assert(sizeof(pid_t) == sizeof(int32_t), "pid_t travels as a 32-bit integer");

enum OpmReadingFlag { OpmFlagNoReading = 0, OpmFlagReading = 1, OpmFlagNotConnected = 2 };

constexpr size_t kOpmShareSegmentSize = 1024;

// ftok(".", 1): the key follows the working directory, which the reader inherits from the page.
key_t Getkey();
// Creates or opens the segment and attaches it; (char*)-1 when the attachment failed.
char* IpcGetAddr(key_t key_word);
// Whether an address returned by IpcGetAddr can be used.
bool isShareMemAttached(const void* addr);

#endif // OPMSHARERECORD_H
