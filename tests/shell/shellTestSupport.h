#ifndef SHELLTESTSUPPORT_H
#define SHELLTESTSUPPORT_H

#include "devicePaths.h"
#include "testSupport.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QTest>

#include <cstdio>
#include <unistd.h>

// Catches what the code under test writes to standard output (its trace lines) while it lives.
// Keep it around the call only: QtTest reports through standard output too.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        fflush(stdout);
        m_file = tmpfile();
        m_saved = m_file ? dup(STDOUT_FILENO) : -1;
        if (m_saved >= 0)
            dup2(fileno(m_file), STDOUT_FILENO);
    }
    ~StdoutCapture() { restore(); }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Ends the capture and returns what was written.
    QByteArray take()
    {
        restore();
        if (!m_file)
            return QByteArray();
        QByteArray text;
        rewind(m_file);
        char chunk[4096];
        size_t n;
        while ((n = fread(chunk, 1, sizeof chunk, m_file)) > 0)
            text.append(chunk, int(n));
        fclose(m_file);
        m_file = nullptr;
        return text;
    }

private:
    void restore()
    {
        if (m_saved < 0)
            return;
        fflush(stdout);
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
        m_saved = -1;
    }

    FILE* m_file = nullptr;
    int m_saved = -1;
};

inline int countLines(const QByteArray& text, const QByteArray& line)
{
    int count = 0;
    for (const QByteArray& l : text.split('\n'))
        count += l == line ? 1 : 0;
    return count;
}

// Pids of the readers of the current device root that are running.
inline QList<int> runningReaderPids()
{
    const QString program = QFileInfo(DevicePaths::readerProgram()).canonicalFilePath();
    QList<int> pids;
    if (program.isEmpty())
        return pids;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& entry : entries) {
        bool isPid = false;
        const int pid = entry.toInt(&isPid);
        const QFileInfo exe(QStringLiteral("/proc/%1/exe").arg(entry));
        if (isPid && exe.canonicalFilePath() == program)
            pids << pid;
    }
    return pids;
}

// A reader started by the page may still be on its way from the shell to the program. The
// count is taken only once every running reader has noted its start, so that a reader still
// starting cannot make it look right for a moment.
inline bool readersSettleAt(const TestDeviceRoot& root, int expected, int timeoutMs = 15000)
{
    return QTest::qWaitFor(
            [&] {
                const QList<int> pids = runningReaderPids();
                if (pids.size() != expected)
                    return false;
                const QList<QByteArray> started
                        = root.readFile(QStringLiteral("/reader-starts")).split('\n');
                for (int pid : pids) {
                    if (!started.contains(QByteArray::number(pid)))
                        return false;
                }
                return runningReaderPids() == pids;
            },
            timeoutMs);
}

#endif // SHELLTESTSUPPORT_H
