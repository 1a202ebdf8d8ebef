#ifndef SHELLTESTSUPPORT_H
#define SHELLTESTSUPPORT_H

#include "devicePaths.h"
#include "testSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

// Waits until exactly expected readers of the current device root run. A reader may still be
// on its way from the shell to the program: the count is taken only once every running reader
// has noted its start, so that one still starting cannot make it look right for a moment.
inline bool readersSettleAt(const TestDeviceRoot& root, int expected)
{
    const QString program = QFileInfo(DevicePaths::readerProgram()).canonicalFilePath();
    auto running = [&] {
        QList<QByteArray> pids;
        for (const QString& entry : QDir(QString::fromLatin1("/proc")).entryList(QDir::Dirs)) {
            if (QFileInfo("/proc/" + entry + "/exe").canonicalFilePath() == program)
                pids << entry.toLatin1();
        }
        return pids;
    };
    return !program.isEmpty()
        && TestCompat::waitFor(
            [&] {
                const QList<QByteArray> pids = running();
                const QList<QByteArray> started = root.readFile("/reader-starts").split('\n');
                for (const QByteArray& pid : pids) {
                    if (!started.contains(pid))
                        return false;
                }
                return pids.size() == expected && running() == pids;
            },
            20000);
}

#endif // SHELLTESTSUPPORT_H
