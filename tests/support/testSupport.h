#ifndef TESTSUPPORT_H
#define TESTSUPPORT_H

#include "opmShareRecord.h"
#include "qtCompat.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <memory>

// A device root of the test's own: a temporary folder standing for "/", which is also the
// working directory (so the shared-memory key is the test's own: the folder is chosen so that
// it owns a fresh segment). The segment is removed and the previous working directory
// restored when it goes.
class TestDeviceRoot
{
public:
    TestDeviceRoot();
    ~TestDeviceRoot();
    TestDeviceRoot(const TestDeviceRoot&) = delete;
    TestDeviceRoot& operator=(const TestDeviceRoot&) = delete;

    bool isValid() const { return m_dir && m_dir->isValid(); }
    QString path() const { return m_dir ? m_dir->path() : QString(); }
    // path() + absolute path of the set
    QString file(const QString& setPath) const { return path() + setPath; }
    QByteArray readFile(const QString& setPath) const;
    bool writeFile(const QString& setPath, const QByteArray& data) const;

    // Installs a program at the reader's path.
    bool installReader(const QString& program) const;
    // Installs a reader stand-in at the reader's path: a program that notes each start in
    // file("/reader-starts") and then waits to be killed.
    bool installReaderStandIn() const;
    int readerStarts() const;
    int runningReaders() const;

private:
    std::unique_ptr<TestCompat::TempDir> m_dir;
    QByteArray m_previousCwd;
};

// The power reader's side of the shared record of the current working directory.
class RecordWriter
{
public:
    RecordWriter();
    bool isAttached() const { return isShareMemAttached(m_record); }
    OpmShareRecord* record() { return m_record; }
    void setReading(const char* wavelength, const char* unit, const char* value, int flag = 1);
    void setRawValue(const char (&bytes)[16]);

private:
    OpmShareRecord* m_record = nullptr;
};

// Closes every modal box that opens while it lives and records what each one said.
class ModalBoxCloser : public QObject
{
    Q_OBJECT
public:
    struct Box
    {
        QString title;
        QString text;
    };

    explicit ModalBoxCloser(int intervalMs = 20);
    ~ModalBoxCloser() override;
    const QList<Box>& boxes() const { return m_boxes; }
    int count() const { return m_boxes.size(); }
    // What to do with a box instead of just closing it: return true when it was handled.
    std::function<bool(QWidget*)> handler;

private slots:
    void closeActive();

private:
    QTimer m_timer;
    QList<Box> m_boxes;
};

// Catches what the code under test writes to standard output (its trace lines), or with Discard
// only keeps it off the test's output. Keep it around the calls only: QtTest reports through
// standard output too.
class StdoutCapture
{
public:
    enum Mode { Keep, Discard };
    explicit StdoutCapture(Mode mode = Keep);
    ~StdoutCapture() { take(); }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Ends the capture and returns what was written (nothing when discarded).
    QByteArray take();

private:
    int m_saved = -1;
    std::FILE* m_file = nullptr;
};

// The on-screen keypad: presses its button of that name ("OK", "Cancel"), or types entry and
// presses OK (Cancel for a null entry). False when box is not the keypad.
bool pressKeyPad(QWidget* box, const QString& button);
bool answerKeyPad(QWidget* box, const QString& entry);

#endif // TESTSUPPORT_H
