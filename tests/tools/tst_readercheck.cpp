// opmrecord check, run as a reader's maker runs it: the simulated reader keeps the contract; each
// broken reader fails the check of the rule it breaks and no other; a reader that cannot start
// or dies at once ends the check with a clear message. Checks running at once never share a
// record key.
#include "checkedReader.h"
#include "testSupport.h"

#include <QtTest>

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

private:
    QHash<QString, QProcess*> m_checks;
    TestCompat::TempDir m_junit;
};

namespace {

struct Reader
{
    const char* tag;
    const char* program;
    const char* rule; // brokenReader --break RULE
    const char* failed; // the checks that fail, by name
    const char* said; // in what the check prints
    int status;
};

const char kOne[] = "11 checks: 10 passed, 1 failed, 0 not run";
const char kBroken[] = BROKENREADER_PATH;

const Reader kReaders[] = {
    { "simulated reader", LUMENPROBE_PATH, "", "", "11 checks: 11 passed, 0 failed, 0 not run", 0 },
    { "wrong key", kBroken, "wrong-key", "key", "0 passed, 1 failed, 10 not run", 1 },
    { "segment of 64 bytes", kBroken, "small-segment", "segment", kOne, 1 },
    { "deviceType without NUL", kBroken, "no-nul", "text-ends", kOne, 1 },
    { "wavelength with its unit", kBroken, "wavelength-unit", "wavelength", kOne, 1 },
    { "unit in lower case", kBroken, "unit-case", "unit", kOne, 1 },
    { "decimal comma", kBroken, "comma-value", "value", kOne, 1 },
    { "flag 3", kBroken, "flag-3", "flag", kOne, 1 },
    { "a reading every 2.5 s", kBroken, "slow", "reading-rate", kOne, 1 },
    // Without a wavelength followed there is no retune time to judge.
    { "ignores the target", kBroken, "ignores-target", "follows-target",
      "9 passed, 1 failed, 1 not", 1 },
    { "retunes in 3 s", kBroken, "slow-retune", "retune-time", kOne, 1 },
    { "clears the page's request", kBroken, "clears-save", "needSave", kOne, 1 },
    { "requests saves unasked", kBroken, "saves-unasked", "needSave", kOne, 1 },
    { "dies at once", kBroken, "dies-at-once", "key",
      "(status 3) before it made the segment of its folder's key; it printed: brokenReader: "
      "optical module not found",
      1 },
    { "never starts", "/nonexistent/lumenProbe", "", "",
      "opmrecord check: cannot start \"/nonexistent/lumenProbe\": No such file or directory", 2 },
};

} // namespace

// The checks take seconds each, mostly waiting: all run at once, each in its own folder.
void TestReaderCheck::initTestCase()
{
    for (const Reader& reader : kReaders) {
        QStringList args = QStringList() << "check"
                                         << "--junit" << m_junit.path() + '/' + reader.tag + ".xml";
        args << "--" << reader.program;
        if (*reader.rule)
            args << "--break" << reader.rule;
        QProcess* check = new QProcess(this);
        check->start(OPMRECORD_PATH, args);
        m_checks.insert(reader.tag, check);
    }
}

void TestReaderCheck::verdicts_data()
{
    addColumns<QString, QString, int>("failed said status");
    for (const Reader& reader : kReaders)
        addRow(reader.tag, reader.failed, reader.said, reader.status);
}

void TestReaderCheck::verdicts()
{
    QFETCH(QString, failed);
    QFETCH(QString, said);
    QFETCH(int, status);
    QProcess* check = m_checks.value(QTest::currentDataTag());
    QVERIFY(check->waitForFinished(120000));
    const QString output =
        QString::fromLocal8Bit(check->readAllStandardOutput() + check->readAllStandardError());
    // The summary first: when a verdict is wrong, the whole output is in the message.
    QVERIFY2(output.contains(said), qPrintable(output));
    QStringList failures;
    foreach (const QString& line, output.split('\n').filter(QRegExp("^FAIL ")))
        failures << line.section(' ', 2, 2);
    QCOMPARE(failures.join(","), failed);
    QCOMPARE(check->exitCode(), status);
}

// A check that failed and one not run, and texts of the reader's that XML must escape.
void TestReaderCheck::junitNamesTheFailure()
{
    QFile file(m_junit.path() + "/ignores the target.xml");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray xml = file.readAll();
    QVERIFY2(xml.contains("<testsuite name=\"opmrecord check\" tests=\"11\" failures=\"1\" "
                          "skipped=\"1\">"),
             xml.constData());
    QCOMPARE(xml.count("<failure "), 1);
    QVERIFY(xml.contains("name=\"follows-target\">\n      <failure message=\"1310 nm (target 1) "
                         "not reported within 5000 ms; wavelenth stayed &quot;850&quot;\"/>"));
    QVERIFY(xml.contains("name=\"retune-time\">\n      <skipped message=\"needs a reader"));
}

// As where folders' keys repeat most: two keys for every folder there is.
key_t oneOfTwoKeys(const char* folder)
{
    struct stat info;
    return stat(folder, &info) == 0 ? key_t(0x7e000000 | (info.st_ino & 1)) : key_t(-1);
}

void TestReaderCheck::scratchKeysAreNeverShared()
{
    // Scratch folders and claims in a folder of the test's own (the checks above have ended).
    TestCompat::TempDir tmp;
    qputenv("TMPDIR", QFile::encodeName(tmp.path()));
    std::string error;

    std::unique_ptr<CheckedReader> first(new CheckedReader(oneOfTwoKeys));
    QVERIFY(first->prepare(&error));
    const key_t firstKey = first->key();
    CheckedReader second(oneOfTwoKeys);
    QVERIFY(second.prepare(&error));
    CheckedReader third(oneOfTwoKeys);
    QVERIFY(!third.prepare(&error));
    QCOMPARE(QString::fromStdString(error), QString("no scratch folder with a key of its own"));
    // The folders passed over are gone.
    QCOMPARE(QDir(tmp.path(), "opmrecord-check-*").count(), 2u);

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

QTEST_MAIN(TestReaderCheck)
#include "tst_readercheck.moc"
