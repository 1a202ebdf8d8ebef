#ifndef SHELLTESTSUPPORT_H
#define SHELLTESTSUPPORT_H

#include "devicePaths.h"
#include "testSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <cstdio>
#include <unistd.h>

// Catches what the code under test writes to standard output (its trace lines). Keep it around
// the calls only: QtTest reports through standard output too.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        fflush(stdout);
        if (m_file)
            dup2(fileno(m_file), STDOUT_FILENO);
    }
    ~StdoutCapture() { take(); }
    Q_DISABLE_COPY(StdoutCapture)

    // Ends the capture and returns what was written.
    QByteArray take()
    {
        if (!m_file)
            return QByteArray();
        fflush(stdout);
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
        fseek(m_file, 0, SEEK_END);
        QByteArray text(int(ftell(m_file)), '\0');
        rewind(m_file);
        text.resize(int(fread(text.data(), 1, size_t(text.size()), m_file)));
        fclose(m_file);
        m_file = nullptr;
        return text;
    }

private:
    int m_saved = dup(STDOUT_FILENO);
    FILE* m_file = tmpfile();
};

// Waits until exactly expected readers of the current device root run. A reader may still be
// on its way from the shell to the program: the count is taken only once every running reader
// has noted its start, so that one still starting cannot make it look right for a moment.
inline bool readersSettleAt(const TestDeviceRoot& root, int expected)
{
    const QString program = QFileInfo(DevicePaths::readerProgram()).canonicalFilePath();
    auto running = [&] {
        QList<QByteArray> pids;
        for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
            if (QFileInfo("/proc/" + entry + "/exe").canonicalFilePath() == program)
                pids << entry.toLatin1();
        }
        return pids;
    };
    return !program.isEmpty()
        && QTest::qWaitFor(
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
