#include "keyClaim.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string claimPath(key_t key)
{
    const char* tmp = std::getenv("TMPDIR");
    char name[32];
    std::snprintf(name, sizeof name, "/opm-key-%08x.lock", unsigned(key));
    return std::string(tmp && *tmp ? tmp : "/tmp") + name;
}

bool sameFile(int fd, const std::string& path)
{
    struct stat held, named;
    return fstat(fd, &held) == 0 && stat(path.c_str(), &named) == 0 && held.st_dev == named.st_dev
        && held.st_ino == named.st_ino;
}

} // namespace

bool KeyClaim::take(key_t key)
{
    release();
    const std::string path = claimPath(key);
    // A holder unlinks the file before it unlocks it: a lock won on a file that is no longer the
    // one named is taken again on the new one.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (fd < 0)
            return false;
        if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
            close(fd);
            return false;
        }
        if (sameFile(fd, path)) {
            m_fd = fd;
            m_path = path;
            return true;
        }
        close(fd);
    }
    return false;
}

void KeyClaim::release()
{
    if (m_fd < 0)
        return;
    unlink(m_path.c_str());
    close(m_fd);
    m_fd = -1;
}
