#ifndef TESTSUPPORT_H
#define TESTSUPPORT_H

#include "opmShareRecord.h"
#include "qtCompat.h"
#include "readerProcess.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <memory>

// Tables of typed columns, a line each: addColumns<QString, int>("label count") adds columns of
// these names (blank between) and types, in order; addRow("tag", values...) adds a row (a string
// literal, read as Latin-1, goes into a QString column).
template <typename... T>
void addColumns(const char* names)
{
    // QtTest keeps the names' addresses: they live as long as the process.
    static QList<QByteArray> kept;
    const QList<QByteArray> list = QByteArray(names).split(' ');
    kept += list;
    int i = 0;
    const int added[] = { 0, (QTest::addColumn<T>(list.at(i++).constData()), 0)... };
    (void)added;
}
template <typename T>
const T& cellOf(const T& value)
{
    return value;
}
inline QString cellOf(const char* text) { return QString::fromLatin1(text); }
template <typename... T>
void addRow(const QString& tag, const T&... values)
{
    QTestData& row = QTest::newRow(qPrintable(tag));
    const int added[] = { 0, (void(row << cellOf(values)), 0)... };
    (void)added;
}

// The settings file as the set keeps it: its thirteen keys with their defaults (the one table
// of them the tests have, as the file's lines); the lines of a setup text as "key=value", values
// read as QSettings reads them, sorted by key (of a key given twice, the later); those of the
// [COpmSetup] group on disk as it is now (QSettings would answer from its cache), and one key's
// value there (null: no such key).
extern const char kSetupDefaults[];
QStringList storedSetup();
QString storedValue(const QString& key);
QStringList setupLines(const QByteArray& text);

class KeyClaim;

// A device root of the test's own: a temporary folder standing for "/", which is also the
// working directory (so the shared-memory key is the test's own: the folder is chosen so that
// it owns a fresh segment). The segment is removed and the previous working directory
// restored when it goes.
class TestDeviceRoot
{
public:
    TestDeviceRoot();
    ~TestDeviceRoot();

    bool isValid() const { return m_dir && m_dir->isValid(); }
    QString path() const { return m_dir ? m_dir->path() : QString(); }
    // path() + absolute path of the set
    QString file(const QString& setPath) const { return path() + setPath; }
    QByteArray readFile(const QString& setPath) const;
    bool writeFile(const QString& setPath, const QByteArray& data) const;

    // Installs a program at the reader's path; without one, a stand-in that notes each start in
    // file("/reader-starts") and waits to be killed.
    bool installReader(const QString& program = QString()) const;
    // The pids of the readers of this root that run now; waiting until exactly expected of them
    // run, each stand-in past its start.
    QList<int> runningReaders() const { return ReaderProcess::processes(); }
    bool readersSettleAt(int expected, int timeoutMs = 20000) const;

private:
    TestDeviceRoot(const TestDeviceRoot&);
    TestDeviceRoot& operator=(const TestDeviceRoot&);

    std::unique_ptr<KeyClaim> m_claim; // given up after the segment and the folder are gone
    std::unique_ptr<TestCompat::TempDir> m_dir;
    QByteArray m_previousCwd;
    mutable bool m_standIn;
};

// The power reader's side of the shared record of the current working directory.
class RecordWriter
{
public:
    RecordWriter();
    bool isAttached() const { return isShareMemAttached(m_record); }
    OpmShareRecord* record() { return m_record; }
    // A text as long as its field or longer fills the field without a NUL, as no reader should.
    void setReading(const char* wavelength, const char* unit, const char* value, int flag = 1);

private:
    OpmShareRecord* m_record;
};

// Closes every modal box that opens while it lives and records "title: text" of each (the text
// of a message box).
class ModalBoxCloser : public QObject
{
    Q_OBJECT
public:
    explicit ModalBoxCloser(int intervalMs = 20);
    const QStringList& boxes() const { return m_boxes; }
    int count() const { return m_boxes.size(); }
    // What to do with a box instead of just closing it: return true when it was handled.
    std::function<bool(QWidget*)> handler;

private slots:
    void closeActive();

private:
    QTimer m_timer;
    QStringList m_boxes;
};

// Catches what the code under test writes to standard output (its trace lines). Keep it around
// the calls only: QtTest reports through standard output too.
class StdoutCapture
{
public:
    StdoutCapture();
    ~StdoutCapture() { take(); }

    // Ends the capture and returns what was written.
    QByteArray take();

private:
    StdoutCapture(const StdoutCapture&);
    StdoutCapture& operator=(const StdoutCapture&);

    int m_saved;
    std::FILE* m_file;
};

// A program run to its end in folder (30 s at most): its exit status, -1 when it did not end
// or did not end normally, and what it printed.
struct ProgramRun
{
    int status;
    QByteArray out;
    QByteArray err;
};
ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder);

// The on-screen keypad: types entry and presses OK; "%OK%" presses OK on the proposed text, a
// null entry types something and presses Cancel. False when box is not the keypad.
bool answerKeyPad(QWidget* box, const QString& entry);

#endif // TESTSUPPORT_H
