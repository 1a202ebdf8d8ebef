#include "fileReplace.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace {

// fsync needs no write access: a read-only descriptor reaches the same file or folder.
bool syncToDisk(const QByteArray& path)
{
    int fd;
    do
        fd = open(path.constData(), O_RDONLY);
    while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return false;
    const bool synced = fsync(fd) == 0;
    close(fd);
    return synced;
}

QByteArray folderOf(const QByteArray& path)
{
    const int slash = path.lastIndexOf('/');
    if (slash < 0)
        return QByteArray(".");
    return slash == 0 ? QByteArray("/") : path.left(slash);
}

} // namespace

bool FileReplace::commit(const QByteArray& pending, const QByteArray& target)
{
    if (!syncToDisk(pending) || rename(pending.constData(), target.constData()) != 0) {
        unlink(pending.constData());
        return false;
    }
    // The file is in place; a folder that cannot be synced only leaves the rename less durable.
    syncToDisk(folderOf(target));
    return true;
}
