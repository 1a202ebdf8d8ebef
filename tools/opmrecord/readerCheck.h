#ifndef READERCHECK_H
#define READERCHECK_H

// opmrecord check [--junit FILE] [--retune-ms MS] -- <reader command ...>
// Starts a power reader in a scratch folder of its own, plays the page's side of the shared
// record against it and tells, check by check, whether it keeps the record's contract.
namespace ReaderCheck {

extern const char kUsage[];

// argv[0] is "check". 0: every check passed; 1: a check failed; 2: bad usage, or the reader or
// the report could not be started or written.
int run(int argc, char** argv);

} // namespace ReaderCheck

#endif // READERCHECK_H
