#ifndef TRENDCSV_H
#define TRENDCSV_H

#include <cstddef>
#include <string>
#include <vector>

#include <stdint.h>

// One row of a trend log, both ways. The file is plain ASCII CSV:
//   time,wavelength,unit,value,number,flag,needSave
//   2026-11-25T14:03:07.125+01:00,1550,dBm,-4.52,-4.52,1,0
// time is local time with milliseconds and its UTC offset; texts have bytes other than
// printable ASCII (and the backslash) as \xHH and are quoted when they hold a comma or a quote.
namespace TrendCsv {

extern const char kHeader[];

struct Row
{
    int64_t msSinceEpoch = 0;
    int32_t utcOffsetSeconds = 0; // of the local time written, so it can be shown again
    std::string wavelength; // as in the file: escaped, unquoted
    std::string unit;
    std::string value;
    bool hasNumber = false;
    double number = 0;
    int32_t flag = 0;
    int32_t needSave = 0;

    // A power reading worth plotting.
    bool isReading() const { return flag == 1 && hasNumber; }
};

// A record text read no further than length (or its NUL), as ASCII.
std::string asciiText(const char* text, size_t length);
// The field as CSV: quoted, quotes doubled, when it holds a comma, quote, CR or LF.
std::string csvField(const std::string& text);
// The whole text read by strtod, blanks around it allowed, finite.
bool parseNumber(const std::string& text, double* number);

std::string formatTime(int64_t msSinceEpoch);
// Takes what formatTime writes, also with "Z" or without an offset (then local time here).
bool parseTime(const std::string& text, int64_t* msSinceEpoch, int32_t* utcOffsetSeconds);

std::string formatRow(const Row& row);
// False for anything else than seven good fields (the header included).
bool parseRow(const std::string& line, Row* row);
// The fields of one line; false on a stray or unclosed quote.
bool splitFields(const std::string& line, std::vector<std::string>* fields);

} // namespace TrendCsv

#endif // TRENDCSV_H
