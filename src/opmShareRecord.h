#ifndef OPMSHARERECORD_H
#define OPMSHARERECORD_H

#include <cstddef>

#include <stdint.h>
#include <sys/types.h>

// A condition the compiler checks; C++98 has no static_assert. name says what is wrong.
#define OPM_STATIC_ASSERT(condition, name)                                                         \
    typedef char opm_assert_##name[(condition) ? 1 : -1] __attribute__((unused))

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

OPM_STATIC_ASSERT(offsetof(OpmShareRecord, wavelenth) == 0, wavelenth_at_0);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, unit) == 8, unit_at_8);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, value) == 16, value_at_16);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, flag) == 32, flag_at_32);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, pid) == 36, pid_at_36);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, deviceType) == 40, deviceType_at_40);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, wavelenthTarget) == 56, wavelenthTarget_at_56);
OPM_STATIC_ASSERT(offsetof(OpmShareRecord, needSave) == 60, needSave_at_60);
OPM_STATIC_ASSERT(sizeof(OpmShareRecord) == 64, the_shared_record_is_64_bytes);
OPM_STATIC_ASSERT(sizeof(pid_t) == sizeof(int32_t), pid_t_travels_as_a_32_bit_integer);

enum OpmReadingFlag { OpmFlagNoReading = 0, OpmFlagReading = 1, OpmFlagNotConnected = 2 };

const size_t kOpmShareSegmentSize = 1024;

// ftok(".", 1): the key follows the working directory, which the reader inherits from the page.
key_t Getkey();
// Creates or opens the segment and attaches it; (char*)-1 when the attachment failed.
char* IpcGetAddr(key_t key_word);
// Whether an address returned by IpcGetAddr can be used.
bool isShareMemAttached(const void* addr);

#endif // OPMSHARERECORD_H
