// The record shared with the power reader: its layout, its key and segment, bounded reads of
// its texts, and the failures of setting it up.
#include "fixedText.h"
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QFile>
#include <QtTest>

#include <cstring>
#include <functional>
#include <sys/ipc.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct ChildResult
{
    int exitStatus = -1; // -1: did not exit normally
    QByteArray errorOutput;
};

// Runs body in a child process with its standard error caught; body's return value is the
// child's exit status unless it ends the process itself.
ChildResult runInChild(const std::function<int()>& body)
{
    ChildResult result;
    int pipeFds[2];
    if (pipe(pipeFds) != 0)
        return result;
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(pipeFds[1], STDERR_FILENO);
        close(pipeFds[0]);
        close(pipeFds[1]);
        _exit(body());
    }
    close(pipeFds[1]);
    char buffer[512];
    ssize_t n;
    while ((n = read(pipeFds[0], buffer, sizeof buffer)) > 0)
        result.errorOutput.append(buffer, int(n));
    close(pipeFds[0]);
    int status = 0;
    if (pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
    return result;
}

} // namespace

class TestShareRecord : public QObject
{
    Q_OBJECT
private slots:
    void layout_data();
    void layout();
    void keyFollowsFolder();
    void attachTwiceSharesSegment();
    void attachedPredicate();
    void fullFieldReadBounded_data();
    void fullFieldReadBounded();
    void setupFailures_data();
    void setupFailures();
    void failedAttachRemovesSegment();
};

void TestShareRecord::layout_data()
{
    QTest::addColumn<size_t>("offset");
    QTest::addColumn<size_t>("size");
    QTest::addColumn<size_t>("expectedOffset");
    QTest::addColumn<size_t>("expectedSize");
#define FIELD(name, off, len) \
    QTest::newRow(#name) << offsetof(OpmShareRecord, name) << sizeof(OpmShareRecord::name) \
                         << size_t(off) << size_t(len)
    FIELD(wavelenth, 0, 8);
    FIELD(unit, 8, 8);
    FIELD(value, 16, 16);
    FIELD(flag, 32, 4);
    FIELD(pid, 36, 4);
    FIELD(deviceType, 40, 16);
    FIELD(wavelenthTarget, 56, 4);
    FIELD(needSave, 60, 4);
#undef FIELD
    QTest::newRow("whole record") << size_t(0) << sizeof(OpmShareRecord) << size_t(0) << size_t(64);
}

void TestShareRecord::layout()
{
    QFETCH(size_t, offset);
    QFETCH(size_t, size);
    QFETCH(size_t, expectedOffset);
    QFETCH(size_t, expectedSize);
    QCOMPARE(offset, expectedOffset);
    QCOMPARE(size, expectedSize);
}

void TestShareRecord::keyFollowsFolder()
{
    TestDeviceRoot root;
    const key_t first = Getkey();
    QVERIFY(first != -1);
    QCOMPARE(Getkey(), first);
    QCOMPARE(first, ftok(QFile::encodeName(root.path()).constData(), 1));
}

void TestShareRecord::attachTwiceSharesSegment()
{
    TestDeviceRoot root;
    auto* page = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(Getkey()));
    auto* again = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(Getkey()));
    RecordWriter reader;
    QVERIFY(isShareMemAttached(page));
    QVERIFY(isShareMemAttached(again));
    QVERIFY(reader.isAttached());

    page->wavelenthTarget = 3;
    QCOMPARE(again->wavelenthTarget, 3);
    QCOMPARE(reader.record()->wavelenthTarget, 3);
    reader.setReading("1550", "dBm", "-12.34", 1);
    QVERIFY(FixedText::equals(page->value, "-12.34"));
    QVERIFY(FixedText::equals(again->wavelenth, "1550"));

    struct shmid_ds info;
    QVERIFY(shmctl(shmget(Getkey(), 0, 0), IPC_STAT, &info) == 0);
    QCOMPARE(size_t(info.shm_segsz), kOpmShareSegmentSize);
    shmdt(page);
    shmdt(again);
}

void TestShareRecord::attachedPredicate()
{
    TestDeviceRoot root;
    char* addr = IpcGetAddr(Getkey());
    QVERIFY(isShareMemAttached(addr));
    QVERIFY(!isShareMemAttached(nullptr));
    QVERIFY(!isShareMemAttached(reinterpret_cast<void*>(-1)));
    shmdt(addr);
}

void TestShareRecord::fullFieldReadBounded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("read");
    QTest::newRow("16 characters, no NUL") << QByteArray("-123456789.12345") << QByteArray("-123456789.1234");
    QTest::newRow("15 characters and NUL") << QByteArray("-12345678.12345\0", 16)
                                           << QByteArray("-12345678.12345");
    QTest::newRow("NUL first") << QByteArray("\0XXXXXXXXXXXXXX", 16) << QByteArray();
}

// The last byte of a text field counts as its NUL, so a reader that fills the field never
// makes the page read into the next field.
void TestShareRecord::fullFieldReadBounded()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, read);
    TestDeviceRoot root;
    RecordWriter reader;
    QVERIFY(reader.isAttached());
    char raw[16];
    std::memcpy(raw, bytes.constData(), sizeof raw);
    reader.setRawValue(raw);
    reader.record()->flag = 0x41414141; // "AAAA" right behind the value

    const OpmShareRecord copy = *reader.record();
    char wide[64];
    std::memset(wide, 'Z', sizeof wide);
    FixedText::copyField(wide, sizeof wide, copy.value, sizeof copy.value);
    char narrow[16];
    FixedText::copyField(narrow, copy.value);

    QCOMPARE(FixedText::length(copy.value), size_t(read.size()));
    QCOMPARE(QByteArray(wide), read);
    QCOMPARE(QByteArray(narrow), read);
    QVERIFY(FixedText::equals(copy.value, read.constData()));
}

void TestShareRecord::setupFailures_data()
{
    QTest::addColumn<bool>("badKey");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("no key") << true << QByteArray("ftok: ");
    QTest::newRow("shmget refuses") << false << QByteArray("shmget: ");
}

// Without a key or a segment the process ends with status 255 after the perror text.
void TestShareRecord::setupFailures()
{
    QFETCH(bool, badKey);
    QFETCH(QByteArray, error);
    TestDeviceRoot root;
    int smallSegment = -1;
    if (!badKey) {
        // A segment of the key that is too small for the record makes shmget refuse.
        smallSegment = shmget(Getkey(), 16, IPC_CREAT | 0666);
        QVERIFY(smallSegment != -1);
    }

    const ChildResult child = runInChild([badKey]() {
        IpcGetAddr(badKey ? key_t(-1) : Getkey());
        return 0;
    });
    if (smallSegment != -1)
        shmctl(smallSegment, IPC_RMID, nullptr);

    QCOMPARE(child.exitStatus, 255);
    QVERIFY2(child.errorOutput.startsWith(error), child.errorOutput.constData());
    QCOMPARE(child.errorOutput.count('\n'), 1);
}

// A failed attachment hands back (char*)-1 without ending the process and marks the segment
// for removal.
void TestShareRecord::failedAttachRemovesSegment()
{
    TestDeviceRoot root;
    const key_t key = Getkey();
    QVERIFY(key != -1);

    const ChildResult child = runInChild([key]() {
        struct rlimit none = { 0, 0 };
        if (setrlimit(RLIMIT_AS, &none) != 0)
            return 1;
        char* addr = IpcGetAddr(key);
        if (isShareMemAttached(addr) || addr != reinterpret_cast<char*>(-1))
            return 2;
        return shmget(key, 0, 0) == -1 ? 0 : 3;
    });

    QCOMPARE(child.exitStatus, 0);
    QVERIFY2(child.errorOutput.startsWith("shmat: "), child.errorOutput.constData());
    QVERIFY(shmget(key, 0, 0) == -1);
}

QTEST_APPLESS_MAIN(TestShareRecord)
#include "tst_sharerecord.moc"
