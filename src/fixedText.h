#ifndef FIXEDTEXT_H
#define FIXEDTEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>

// Fixed-size text fields: a field of N bytes holds at most N - 1 characters and its NUL.
// Every copy into such a field goes through these helpers.
namespace FixedText {

// Length of the text in a field, never looking past its last byte.
inline size_t length(const char* field, size_t size)
{
    if (size == 0)
        return 0;
    const void* nul = std::memchr(field, '\0', size);
    return nul ? size_t(static_cast<const char*>(nul) - field) : size - 1;
}

// Copies at most size - 1 characters of src and ends the field with a NUL.
inline void copy(char* field, size_t size, const char* src)
{
    if (size == 0)
        return;
    const size_t n = src ? std::min(std::strlen(src), size - 1) : 0;
    std::memmove(field, src ? src : "", n);
    field[n] = '\0';
}

// Copies a field of another record, reading no further than its width.
inline void copyField(char* field, size_t size, const char* src, size_t srcSize)
{
    if (size == 0)
        return;
    const size_t n = std::min(length(src, srcSize), size - 1);
    std::memmove(field, src, n);
    field[n] = '\0';
}

// Copies a number followed by a blank and a unit word ("-12.500000 dB/km"). When the text does
// not fit, the unit is kept whole and digits after the decimal point are dropped first; only
// a text that still does not fit is cut.
void copyMeasurement(char* field, size_t size, const char* src);

template <size_t N>
inline void copy(char (&field)[N], const char* src)
{
    copy(field, N, src);
}

template <size_t N, size_t M>
inline void copyField(char (&field)[N], const char (&src)[M])
{
    copyField(field, N, src, M);
}

template <size_t N>
inline void copyMeasurement(char (&field)[N], const char* src)
{
    copyMeasurement(field, N, src);
}

template <size_t N>
inline size_t length(const char (&field)[N])
{
    return length(field, N);
}

} // namespace FixedText

#endif // FIXEDTEXT_H
