#ifndef RECORDFIELDS_H
#define RECORDFIELDS_H

#include "opmShareRecord.h"

#include <cstddef>
#include <string>

#include <sys/types.h>

// The shared record's fields by name, for tools that print or set them from text.
namespace RecordFields {

enum class Kind { Text, Integer };

struct Field
{
    const char* name;
    Kind kind;
    size_t offset;
    size_t size;
};

enum class Check { Ok, TooLong, UnknownField, BadNumber };

// The eight fields in record order.
const Field* begin();
const Field* end();
const Field* find(const std::string& name);

// Whether value can go into the field: texts must leave room for their NUL, integers must be
// whole decimal numbers that fit 32 bits.
Check check(const std::string& name, const std::string& value);
std::string describe(Check result, const std::string& name, const std::string& value);

// Writes value into the field: texts bounded to the field with their NUL, integers only when
// check() finds them good. False when nothing was written.
bool set(OpmShareRecord* record, const std::string& name, const std::string& value);

// The field as printable text: integers in decimal, texts in quotes with anything else than
// printable ASCII escaped, read no further than the field (a field without NUL is marked).
std::string show(const OpmShareRecord& record, const Field& field);

// A whole decimal number that fits 32 bits, and nothing else.
bool parseInt32(const std::string& text, int32_t* value);

// Escapes a text for printing inside double quotes.
std::string escaped(const char* text, size_t length);

// A copy of the live record, which the reader may change at any time, taken in one go so that
// its fields belong together as far as a reader that does not lock lets them.
OpmShareRecord snapshot(const volatile OpmShareRecord* live);

// The segment of key as it is now, when it can hold the record: its id. -1 when there is none
// or it is too small; *tooSmall (when given) tells which.
int existingSegment(key_t key, bool* tooSmall = nullptr);

} // namespace RecordFields

#endif // RECORDFIELDS_H
