// The record shared with the power reader: its layout, one segment per folder, and bounded
// reads of its texts.
#include "fixedText.h"
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QFile>
#include <QtTest>

#include <cstring>
#include <sys/shm.h>

class TestShareRecord : public QObject
{
    Q_OBJECT
private slots:
    void layout();
    void attachTwiceSharesSegment();
    void fullFieldReadBounded();
};

void TestShareRecord::layout()
{
#define FIELD(name, offset, size) \
    QCOMPARE(offsetof(OpmShareRecord, name), size_t(offset)); \
    QCOMPARE(sizeof(OpmShareRecord::name), size_t(size))
    FIELD(wavelenth, 0, 8);
    FIELD(unit, 8, 8);
    FIELD(value, 16, 16);
    FIELD(flag, 32, 4);
    FIELD(pid, 36, 4);
    FIELD(deviceType, 40, 16);
    FIELD(wavelenthTarget, 56, 4);
    FIELD(needSave, 60, 4);
#undef FIELD
    QCOMPARE(sizeof(OpmShareRecord), size_t(64));
}

// Page and reader of one folder meet in one segment, which goes with the test's folder.
void TestShareRecord::attachTwiceSharesSegment()
{
    key_t key = -1;
    {
        TestDeviceRoot root;
        key = Getkey();
        QCOMPARE(key, ftok(QFile::encodeName(root.path()).constData(), 1));
        auto* page = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(key));
        auto* again = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(Getkey()));
        RecordWriter reader;
        QVERIFY(isShareMemAttached(page) && isShareMemAttached(again) && reader.isAttached());
        QVERIFY(!isShareMemAttached(nullptr) && !isShareMemAttached(reinterpret_cast<void*>(-1)));

        page->wavelenthTarget = 3;
        QCOMPARE(again->wavelenthTarget, 3);
        QCOMPARE(reader.record()->wavelenthTarget, 3);
        reader.setReading("1550", "dBm", "-12.34", 1);
        QVERIFY(FixedText::equals(again->value, "-12.34"));
        QVERIFY(FixedText::equals(again->unit, "dBm"));
        QVERIFY(!FixedText::equals(again->unit, "dB") && !FixedText::equals(again->unit, "dBmW"));

        struct shmid_ds info;
        QVERIFY(shmctl(shmget(key, 0, 0), IPC_STAT, &info) == 0);
        QCOMPARE(size_t(info.shm_segsz), kOpmShareSegmentSize);
        shmdt(page);
        shmdt(again);
    }
    QCOMPARE(shmget(key, 0, 0), -1);
}

// The last byte of a text field counts as its NUL, so a reader that fills the field never
// makes the page read into the next field.
void TestShareRecord::fullFieldReadBounded()
{
    TestDeviceRoot root;
    RecordWriter reader;
    QVERIFY(reader.isAttached());
    char full[16]; // 16 characters, no NUL
    std::memcpy(full, "-123456789.12345", sizeof full);
    reader.setRawValue(full);
    reader.record()->flag = 0x41414141; // "AAAA" right behind the value

    const char(&value)[16] = reader.record()->value;
    char wide[64];
    std::memset(wide, 'Z', sizeof wide);
    FixedText::copyField(wide, value);
    QCOMPARE(FixedText::length(value), size_t(15));
    QCOMPARE(QByteArray(wide), QByteArray("-123456789.1234"));
    QVERIFY(FixedText::equals(value, "-123456789.1234"));
    QVERIFY(!FixedText::equals(value, "-123456789.12345"));
}

QTEST_APPLESS_MAIN(TestShareRecord)
#include "tst_sharerecord.moc"
