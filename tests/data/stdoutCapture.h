#ifndef STDOUTCAPTURE_H
#define STDOUTCAPTURE_H

#include <QByteArray>

#include <cstdio>
#include <unistd.h>

// Sends standard output (printf and anything else writing to fd 1) into a temporary file until
// take() or destruction. Take the text before checking anything, so that the test's own log
// is not captured; lines that QtTest logs meanwhile (signals under -vs, debug messages) are
// left out of the text.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        std::fflush(stdout);
        m_file = std::tmpfile();
        m_saved = m_file ? dup(STDOUT_FILENO) : -1;
        if (m_saved != -1 && dup2(fileno(m_file), STDOUT_FILENO) == -1) {
            close(m_saved);
            m_saved = -1;
        }
        m_valid = m_saved != -1;
    }

    ~StdoutCapture()
    {
        restore();
        if (m_file)
            std::fclose(m_file);
    }

    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    bool isValid() const { return m_valid; }

    QByteArray take()
    {
        restore();
        QByteArray text;
        if (!m_file)
            return text;
        std::rewind(m_file);
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, m_file)) > 0)
            text.append(buffer, int(n));
        return withoutTestLog(text);
    }

private:
    static QByteArray withoutTestLog(const QByteArray& text)
    {
        static const char* const tags[] = { "INFO   : ", "QDEBUG : ", "QINFO  : ", "QWARN  : " };
        QByteArray kept;
        int start = 0;
        while (start < text.size()) {
            int end = text.indexOf('\n', start);
            end = end < 0 ? text.size() : end + 1;
            const QByteArray line = text.mid(start, end - start);
            bool logged = false;
            for (const char* tag : tags)
                logged = logged || line.startsWith(tag);
            if (!logged)
                kept += line;
            start = end;
        }
        return kept;
    }

    void restore()
    {
        if (m_saved == -1)
            return;
        std::fflush(stdout);
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
        m_saved = -1;
    }

    std::FILE* m_file = nullptr;
    int m_saved = -1;
    bool m_valid = false;
};

#endif // STDOUTCAPTURE_H
