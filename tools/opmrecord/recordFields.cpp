#include "recordFields.h"

#include "fixedText.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace RecordFields {

namespace {

#define OPM_FIELD(name, kind)                                                                      \
    {                                                                                              \
#name, kind, offsetof(OpmShareRecord, name), sizeof(OpmShareRecord::name)                  \
    }

const Field kFields[] = {
    OPM_FIELD(wavelenth, Kind::Text),
    OPM_FIELD(unit, Kind::Text),
    OPM_FIELD(value, Kind::Text),
    OPM_FIELD(flag, Kind::Integer),
    OPM_FIELD(pid, Kind::Integer),
    OPM_FIELD(deviceType, Kind::Text),
    OPM_FIELD(wavelenthTarget, Kind::Integer),
    OPM_FIELD(needSave, Kind::Integer),
};

#undef OPM_FIELD

char* fieldAddress(OpmShareRecord* record, const Field& field)
{
    return reinterpret_cast<char*>(record) + field.offset;
}

const char* fieldAddress(const OpmShareRecord& record, const Field& field)
{
    return reinterpret_cast<const char*>(&record) + field.offset;
}

} // namespace

bool parseInt32(const std::string& text, int32_t* value)
{
    if (text.empty() || text.size() > 16 || std::strlen(text.c_str()) != text.size())
        return false;
    errno = 0;
    char* end = nullptr;
    const long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || parsed < INT32_MIN || parsed > INT32_MAX)
        return false;
    *value = int32_t(parsed);
    return true;
}

const Field* begin() { return kFields; }

const Field* end() { return kFields + sizeof kFields / sizeof kFields[0]; }

const Field* find(const std::string& name)
{
    for (const Field* f = begin(); f != end(); ++f) {
        if (name == f->name)
            return f;
    }
    return nullptr;
}

Check check(const std::string& name, const std::string& value)
{
    const Field* field = find(name);
    if (!field)
        return Check::UnknownField;
    int32_t number = 0;
    if (field->kind == Kind::Integer)
        return parseInt32(value, &number) ? Check::Ok : Check::BadNumber;
    return value.size() < field->size ? Check::Ok : Check::TooLong;
}

std::string describe(Check result, const std::string& name, const std::string& value)
{
    const std::string shown =
        "\"" + escaped(value.data(), std::min<size_t>(value.size(), 64)) + "\"";
    switch (result) {
    case Check::Ok:
        return name + " = " + shown;
    case Check::TooLong: {
        const Field* field = find(name);
        return name + ": " + shown + " is longer than " + std::to_string(field->size - 1)
            + " characters";
    }
    case Check::UnknownField:
        return "no field called \"" + escaped(name.data(), std::min<size_t>(name.size(), 64))
            + "\"";
    case Check::BadNumber:
        return name + ": " + shown + " is not a 32-bit whole number";
    }
    return std::string();
}

bool set(OpmShareRecord* record, const std::string& name, const std::string& value)
{
    const Field* field = find(name);
    if (!field)
        return false;
    char* address = fieldAddress(record, *field);
    if (field->kind == Kind::Text) {
        FixedText::copy(address, field->size, value.c_str());
        return true;
    }
    int32_t number = 0;
    if (!parseInt32(value, &number))
        return false;
    // One aligned 32-bit store, as the page writes its own fields.
    *reinterpret_cast<volatile int32_t*>(address) = number;
    return true;
}

std::string show(const OpmShareRecord& record, const Field& field)
{
    const char* address = fieldAddress(record, field);
    if (field.kind == Kind::Integer) {
        int32_t number;
        std::memcpy(&number, address, sizeof number);
        return std::to_string(number);
    }
    const bool terminated = std::memchr(address, '\0', field.size) != nullptr;
    const size_t length = terminated ? FixedText::length(address, field.size) : field.size;
    return "\"" + escaped(address, length) + "\"" + (terminated ? "" : " (no NUL)");
}

std::string escaped(const char* text, size_t length)
{
    std::string out;
    for (size_t i = 0; i < length; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += char(c);
        } else if (c >= 0x20 && c < 0x7f) {
            out += char(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            out += hex;
        }
    }
    return out;
}

OpmShareRecord snapshot(const volatile OpmShareRecord* live)
{
    OpmShareRecord copy;
    std::memcpy(&copy, const_cast<const OpmShareRecord*>(live), sizeof copy);
    return copy;
}

int existingSegment(key_t key, bool* tooSmall)
{
    const int id = shmget(key, 0, 0);
    struct shmid_ds info;
    const bool small =
        id != -1 && (shmctl(id, IPC_STAT, &info) == -1 || info.shm_segsz < sizeof(OpmShareRecord));
    if (tooSmall)
        *tooSmall = small;
    return small ? -1 : id;
}

} // namespace RecordFields
