#include "trendCsv.h"

#include "recordFields.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace TrendCsv {

const char kHeader[] = "time,wavelength,unit,value,number,flag,needSave";

namespace {

// Days from 1970-01-01 to a civil date (proleptic Gregorian).
int64_t daysFromCivil(int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = unsigned(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + int64_t(doe) - 719468;
}

bool digitsAt(const std::string& text, size_t pos, size_t count, int* value)
{
    if (pos + count > text.size())
        return false;
    *value = 0;
    for (size_t i = pos; i < pos + count; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return false;
        *value = *value * 10 + (text[i] - '0');
    }
    return true;
}

// The offset at the end of a time: "Z", "+hh:mm", "-hh:mm" or nothing (local time).
bool parseOffset(const std::string& rest, bool* hasOffset, int* offsetSeconds)
{
    *hasOffset = !rest.empty();
    *offsetSeconds = 0;
    if (rest.empty() || rest == "Z")
        return true;
    int hours, minutes;
    if (rest.size() != 6 || (rest[0] != '+' && rest[0] != '-') || rest[3] != ':'
        || !digitsAt(rest, 1, 2, &hours) || !digitsAt(rest, 4, 2, &minutes) || hours > 23
        || minutes > 59)
        return false;
    *offsetSeconds = (rest[0] == '-' ? -1 : 1) * (hours * 3600 + minutes * 60);
    return true;
}

int daysInMonth(int year, int month)
{
    static const int days[] = { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 };
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : days[month - 1];
}

} // namespace

std::string asciiText(const char* text, size_t length)
{
    std::string out;
    for (size_t i = 0; i < length && text[i] != '\0'; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c < 0x7f && c != '\\') {
            out += char(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            out += hex;
        }
    }
    return out;
}

std::string csvField(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"')
            out += '"';
        out += c;
    }
    return out + "\"";
}

bool parseNumber(const std::string& text, double* number)
{
    if (std::strlen(text.c_str()) != text.size())
        return false;
    const char* start = text.c_str();
    char* end = nullptr;
    errno = 0;
    const double parsed = std::strtod(start, &end);
    if (end == start || errno == ERANGE || !std::isfinite(parsed))
        return false;
    while (*end == ' ' || *end == '\t')
        ++end;
    if (*end != '\0')
        return false;
    *number = parsed;
    return true;
}

std::string formatTime(int64_t msSinceEpoch)
{
    const time_t seconds = time_t(msSinceEpoch / 1000);
    struct tm local;
    localtime_r(&seconds, &local);
    char text[64];
    size_t n = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    const long offset = local.tm_gmtoff / 60;
    const long size = offset < 0 ? -offset : offset;
    std::snprintf(text + n, sizeof text - n, ".%03d%c%02ld:%02ld", int(msSinceEpoch % 1000),
                  offset < 0 ? '-' : '+', size / 60, size % 60);
    return text;
}

bool parseTime(const std::string& text, int64_t* msSinceEpoch, int32_t* utcOffsetSeconds)
{
    int year, month, day, hour, minute, second, ms;
    if (text.size() < 23 || !digitsAt(text, 0, 4, &year) || text[4] != '-'
        || !digitsAt(text, 5, 2, &month) || text[7] != '-' || !digitsAt(text, 8, 2, &day)
        || text[10] != 'T' || !digitsAt(text, 11, 2, &hour) || text[13] != ':'
        || !digitsAt(text, 14, 2, &minute) || text[16] != ':' || !digitsAt(text, 17, 2, &second)
        || text[19] != '.' || !digitsAt(text, 20, 3, &ms))
        return false;
    if (year < 1970 || month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month)
        || hour > 23 || minute > 59 || second > 60)
        return false;
    bool hasOffset;
    int offset;
    if (!parseOffset(text.substr(23), &hasOffset, &offset))
        return false;
    int64_t seconds;
    if (hasOffset) {
        seconds = daysFromCivil(year, unsigned(month), unsigned(day)) * 86400 + hour * 3600
            + minute * 60 + second - offset;
    } else {
        struct tm local = {};
        local.tm_year = year - 1900;
        local.tm_mon = month - 1;
        local.tm_mday = day;
        local.tm_hour = hour;
        local.tm_min = minute;
        local.tm_sec = second;
        local.tm_isdst = -1;
        const time_t made = std::mktime(&local);
        if (made == time_t(-1))
            return false;
        seconds = made;
        offset = int(local.tm_gmtoff);
    }
    *msSinceEpoch = seconds * 1000 + ms;
    *utcOffsetSeconds = offset;
    return true;
}

std::string formatRow(const Row& row)
{
    std::string number;
    if (row.hasNumber) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", row.number);
        number = text;
    }
    return formatTime(row.msSinceEpoch) + ',' + csvField(row.wavelength) + ',' + csvField(row.unit)
        + ',' + csvField(row.value) + ',' + number + ',' + std::to_string(row.flag) + ','
        + std::to_string(row.needSave);
}

bool splitFields(const std::string& line, std::vector<std::string>* fields)
{
    fields->assign(1, std::string());
    size_t i = 0;
    while (i < line.size()) {
        std::string& field = fields->back();
        if (line[i] == ',') {
            fields->push_back(std::string());
            ++i;
        } else if (line[i] == '"' && field.empty()) {
            for (++i;; ++i) {
                if (i >= line.size())
                    return false;
                if (line[i] == '"' && (i + 1 >= line.size() || line[i + 1] != '"'))
                    break;
                if (line[i] == '"')
                    ++i;
                field += line[i];
            }
            ++i;
            if (i < line.size() && line[i] != ',')
                return false;
        } else if (line[i] == '"') {
            return false;
        } else {
            field += line[i++];
        }
    }
    return true;
}

bool parseRow(const std::string& line, Row* row)
{
    for (char c : line) {
        if (c < 0x20 || c > 0x7e) // a log is printable ASCII throughout
            return false;
    }
    std::vector<std::string> f;
    if (!splitFields(line, &f) || f.size() != 7)
        return false;
    Row parsed;
    parsed.wavelength = f[1];
    parsed.unit = f[2];
    parsed.value = f[3];
    parsed.hasNumber = !f[4].empty();
    if (!parseTime(f[0], &parsed.msSinceEpoch, &parsed.utcOffsetSeconds)
        || (parsed.hasNumber && !parseNumber(f[4], &parsed.number))
        || !RecordFields::parseInt32(f[5], &parsed.flag)
        || !RecordFields::parseInt32(f[6], &parsed.needSave))
        return false;
    *row = parsed;
    return true;
}

} // namespace TrendCsv
