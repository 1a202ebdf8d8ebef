// opmrecord check, run as a reader's maker runs it: the simulated reader and a reader that keeps
// the contract pass; each broken reader fails the check of the rule it breaks and no other; a
// reader that cannot start or dies at once ends the check with a clear message. Checks running
// at once never share a record key.
#include "checkedReader.h"
#include "qtCompat.h"
#include "testSupport.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QtTest>

#include <memory>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/stat.h>

class TestReaderCheck : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void verdicts_data();
    void verdicts();
    void junitNamesTheFailure();
    void scratchKeysAreNeverShared();
    void cleanupTestCase();

private:
    QHash<QString, QProcess*> m_checks;
    TestCompat::TempDir m_junit;
};

namespace {

struct Reader
{
    const char* tag;
    const char* program;
    const char* broken; // --break RULE of the test reader
    const char* failed; // the checks that fail, by name
    int status;
};

const Reader kReaders[] = {
    { "simulated reader", LUMENPROBE_PATH, "", "", 0 },
    { "test reader keeping the contract", BROKENREADER_PATH, "", "", 0 },
    { "wrong key", BROKENREADER_PATH, "wrong-key", "key", 1 },
    { "segment of 64 bytes", BROKENREADER_PATH, "small-segment", "segment", 1 },
    { "deviceType without NUL", BROKENREADER_PATH, "no-nul", "text-ends", 1 },
    { "wavelength with its unit", BROKENREADER_PATH, "wavelength-unit", "wavelength", 1 },
    { "unit in lower case", BROKENREADER_PATH, "unit-case", "unit", 1 },
    { "decimal comma", BROKENREADER_PATH, "comma-value", "value", 1 },
    { "flag 3", BROKENREADER_PATH, "flag-3", "flag", 1 },
    { "a reading every 2.5 s", BROKENREADER_PATH, "slow", "reading-rate", 1 },
    { "ignores the target", BROKENREADER_PATH, "ignores-target", "follows-target", 1 },
    { "retunes in 3 s", BROKENREADER_PATH, "slow-retune", "retune-time", 1 },
    { "clears the page's request", BROKENREADER_PATH, "clears-save", "needSave", 1 },
    { "requests saves unasked", BROKENREADER_PATH, "saves-unasked", "needSave", 1 },
    { "dies at once", BROKENREADER_PATH, "dies-at-once", "key", 1 },
    { "never starts", "/nonexistent/lumenProbe", "", "", 2 },
};

QStringList failedChecks(const QByteArray& output)
{
    QStringList failed;
    foreach (const QByteArray& line, output.split('\n')) {
        if (line.startsWith("FAIL  "))
            failed << QString::fromLatin1(line.mid(6).split(' ').first());
    }
    return failed;
}

} // namespace

// The checks take seconds each, mostly waiting: all run at once, each in its own folder.
void TestReaderCheck::initTestCase()
{
    QVERIFY(m_junit.isValid());
    for (const Reader& reader : kReaders) {
        QStringList args;
        if (QLatin1String(reader.broken) == QLatin1String("comma-value"))
            args << "--junit" << m_junit.path() + "/check.xml";
        args << "--" << reader.program;
        if (*reader.broken)
            args << "--break" << reader.broken;
        QProcess* check = new QProcess(this);
        check->start(OPMRECORD_PATH, QStringList() << "check" << args);
        m_checks.insert(reader.tag, check);
    }
}

void TestReaderCheck::verdicts_data()
{
    addColumns<QString, int>("failed status");
    for (const Reader& reader : kReaders)
        addRow(reader.tag, reader.failed, reader.status);
}

void TestReaderCheck::verdicts()
{
    QFETCH(QString, failed);
    QFETCH(int, status);
    QProcess* check = m_checks.value(QTest::currentDataTag());
    QVERIFY(check->waitForFinished(120000));
    const QByteArray output = check->readAllStandardOutput();
    const QByteArray errors = check->readAllStandardError();
    QCOMPARE(failedChecks(output).join(","), failed);
    QCOMPARE(check->exitCode(), status);
    if (status == 0)
        QVERIFY2(output.contains("11 checks: 11 passed, 0 failed, 0 not run"), output.constData());
    if (QLatin1String(QTest::currentDataTag()) == QLatin1String("dies at once"))
        QVERIFY2(output.contains("(status 3)") && output.contains("optical module not found"),
                 output.constData());
    if (status == 2)
        QCOMPARE(QString::fromLocal8Bit(errors).trimmed(),
                 QString("opmrecord check: cannot start \"/nonexistent/lumenProbe\": "
                         "No such file or directory"));
}

void TestReaderCheck::junitNamesTheFailure()
{
    QFile file(m_junit.path() + "/check.xml");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray xml = file.readAll();
    QVERIFY(xml.contains("<testsuite name=\"opmrecord check\" tests=\"11\" failures=\"1\" "
                         "skipped=\"0\">"));
    QCOMPARE(xml.count("<failure "), 1);
    QVERIFY2(xml.contains("name=\"value\">\n      <failure message=\"value &quot;-4,"),
             xml.constData());
}

// As where folders' keys repeat most: two keys for every folder there is.
key_t oneOfTwoKeys(const char* folder)
{
    struct stat info;
    return stat(folder, &info) == 0 ? key_t(0x7e000000 | (info.st_ino & 1)) : key_t(-1);
}

void TestReaderCheck::scratchKeysAreNeverShared()
{
    TestCompat::TempDir tmp;
    struct TmpDir
    {
        explicit TmpDir(const QString& path) : previous(qgetenv("TMPDIR"))
        {
            qputenv("TMPDIR", QFile::encodeName(path));
        }
        ~TmpDir() { previous.isNull() ? unsetenv("TMPDIR") : setenv("TMPDIR", previous, 1); }
        const QByteArray previous;
    } scratchIn(tmp.path());
    const QDir scratch(tmp.path(), "opmrecord-check-*", QDir::Name, QDir::Dirs);
    std::string error;

    std::unique_ptr<CheckedReader> first(new CheckedReader(oneOfTwoKeys));
    QVERIFY(first->prepare(&error));
    const key_t firstKey = first->key();
    CheckedReader second(oneOfTwoKeys);
    QVERIFY(second.prepare(&error));
    QCOMPARE(second.key(), key_t(firstKey ^ 1));
    CheckedReader third(oneOfTwoKeys);
    QVERIFY(!third.prepare(&error));
    QCOMPARE(QString::fromStdString(error), QString("no scratch folder with a key of its own"));
    QCOMPARE(scratch.entryList().size(), 2);

    first.reset();
    // A segment that no check made holds its key as well, as a running page's does.
    const int segment = shmget(firstKey, 64, IPC_CREAT | IPC_EXCL | 0600);
    QVERIFY(segment != -1);
    const bool heldBySegment = !third.prepare(&error);
    shmctl(segment, IPC_RMID, nullptr);
    QVERIFY(heldBySegment);
    QVERIFY(third.prepare(&error));
    QCOMPARE(third.key(), firstKey);
}

void TestReaderCheck::cleanupTestCase()
{
    foreach (QProcess* check, m_checks) {
        check->kill();
        check->waitForFinished(5000);
    }
}

QTEST_MAIN(TestReaderCheck)
#include "tst_readercheck.moc"
