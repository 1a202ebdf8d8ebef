#ifndef TRENDLOG_H
#define TRENDLOG_H

// "opmrecord log FILE.csv [--interval MS] [--duration S] [--append]": samples the shared record
// of the current folder into a CSV trend log (see trendCsv.h), one row per sample, each row on
// disk before the next is taken.
namespace TrendLog {

extern const char kUsage[];

// argv[0] is "log". 0 when ended by a signal or the duration, 1 when the record or the file
// cannot be used, 2 on bad usage.
int run(int argc, char** argv);

} // namespace TrendLog

#endif // TRENDLOG_H
