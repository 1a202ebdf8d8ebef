#ifndef KEYCLAIM_H
#define KEYCLAIM_H

#include <string>

#include <sys/types.h>

// A record key held by one of the programs on this PC that start readers in folders of their
// own (the reader check, the test suites). A key comes from part of a folder's inode, so two
// folders can share one; whoever makes a folder takes its key here first, so that no two readers
// ever meet in one segment. The claim is a locked file in TMPDIR (or /tmp), named by the key;
// it goes when the holder releases it or ends.
class KeyClaim
{
public:
    KeyClaim() = default;
    KeyClaim(const KeyClaim&) = delete;
    KeyClaim& operator=(const KeyClaim&) = delete;
    ~KeyClaim() { release(); }

    // True when this claim now holds key; false when another claim holds it.
    bool take(key_t key);
    void release();
    bool held() const { return m_fd >= 0; }

private:
    int m_fd = -1;
    std::string m_path;
};

#endif // KEYCLAIM_H
