#include "fixedText.h"

namespace FixedText {

void copyMeasurement(char* field, size_t size, const char* src)
{
    if (size == 0)
        return;
    if (!src)
        src = "";
    const size_t len = std::strlen(src);
    const char* blank = std::strrchr(src, ' ');
    const char* dot =
        static_cast<const char*>(std::memchr(src, '.', blank ? size_t(blank - src) : 0));
    if (len < size || !blank || !dot) {
        copy(field, size, src);
        return;
    }
    const size_t excess = len - (size - 1);
    const size_t fraction = size_t(blank - dot) - 1;
    if (excess > fraction) {
        copy(field, size, src);
        return;
    }
    size_t number = size_t(blank - src) - excess;
    if (src[number - 1] == '.')
        --number; // no digits left after the point: drop the point too
    std::memmove(field, src, number);
    const size_t unit = len - size_t(blank - src);
    std::memmove(field + number, blank, unit);
    field[number + unit] = '\0';
}

} // namespace FixedText
