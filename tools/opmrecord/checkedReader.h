#ifndef CHECKEDREADER_H
#define CHECKEDREADER_H

#include "keyClaim.h"

#include <string>
#include <vector>

#include <sys/types.h>

// A folder's record key as the page and the reader make it: ftok(folder, 1).
key_t recordKeyOf(const char* folder);

// A reader under check: started in a scratch folder of its own, so that its record has a key
// of its own and never touches a running set's, and ended with its whole process group.
class CheckedReader
{
public:
    // keyOf: how a folder's key is found; only a test gives another than recordKeyOf.
    explicit CheckedReader(key_t (*keyOf)(const char*) = recordKeyOf) : m_keyOf(keyOf) { }
    CheckedReader(const CheckedReader&) = delete;
    CheckedReader& operator=(const CheckedReader&) = delete;
    // Ends a reader still running and removes the scratch folder and its segment.
    ~CheckedReader();

    // Makes the scratch folder: one whose key no segment and no other claim holds, so that the
    // segment the check finds is the reader's own. False with *error set when there is none.
    bool prepare(std::string* error);
    // Starts command in the scratch folder, its output going to a log there. False with *error
    // set when it cannot be started at all.
    bool start(const std::vector<std::string>& command, std::string* error);

    // Whether it still runs; once it has ended, how: "status 3", "signal 11".
    bool running();
    const std::string& howItEnded() const { return m_ended; }
    // SIGTERM to its process group, then up to graceMs for it to end; SIGKILL after that. True
    // when it ended on SIGTERM; *tookMs says how long that took.
    bool terminate(long graceMs, long* tookMs);

    pid_t pid() const { return m_pid; }
    key_t key() const { return m_key; }
    const std::string& folder() const { return m_folder; }
    // The end of what the reader printed, for a message about a reader that did not start.
    std::string outputTail(size_t maxBytes = 400) const;

private:
    void noteStatus(int status);

    key_t (*m_keyOf)(const char*);
    std::string m_folder;
    key_t m_key = -1;
    KeyClaim m_claim;
    pid_t m_pid = -1;
    std::string m_ended;
};

// The check's clock: milliseconds on the monotonic clock, and a pause of so many.
long long nowMs();
void sleepMs(long ms);

// The program's path as the scratch folder sees it: a relative path with a slash is made
// absolute against the current folder; a bare name is left for PATH.
std::string commandPathFrom(const std::string& currentFolder, const std::string& program);

#endif // CHECKEDREADER_H
