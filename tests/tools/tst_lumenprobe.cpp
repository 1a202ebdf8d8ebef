// The simulated power reader in a device root of the test's own (also its working folder, which
// decides the shared record): its start without a wavelength asked for, and scenario files no one
// should write. Its live reading, its save key, following the page and its end are the reader
// fault suite's (tst_readerfaults), a well-formed scenario the end-to-end report suite's.
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QProcess>
#include <QtTest>

#include <cstring>

class TestLumenProbe : public QObject
{
    Q_OBJECT
private slots:
    void startsAt850WithoutTarget();
    void survivesHostileScenario();
};

// Before the page has asked for a wavelength (the target not one of the five), the live reader
// measures at 850 nm.
void TestLumenProbe::startsAt850WithoutTarget()
{
    TestDeviceRoot root;
    RecordWriter writer;
    QVERIFY(writer.isAttached());
    std::memset(writer.record(), 0, sizeof(OpmShareRecord));
    writer.record()->wavelenthTarget = 42;
    QProcess probe;
    probe.setWorkingDirectory(root.path());
    probe.start(LUMENPROBE_PATH, QStringList());
    OPM_TRY_COMPARE(writer.record()->flag, int32_t(OpmFlagReading), 20000);
    QCOMPARE(QByteArray(writer.record()->wavelenth), QByteArray("850"));
    probe.kill();
    probe.waitForFinished(20000);
}

// A file with every kind of bad line: binary bytes, a line of 5000 characters, an unknown field,
// a NUL in a text, control characters, an unclosed quote, a time out of range, texts longer than
// their field. Each bad line is skipped with a message, overlong texts are cut to their field
// with the NUL inside, the good lines still play, and at its end the reader says "no reading".
void TestLumenProbe::survivesHostileScenario()
{
    TestDeviceRoot root;
    RecordWriter writer;
    QVERIFY(writer.isAttached());
    OpmShareRecord* r = writer.record();
    std::memset(r, 0, sizeof *r);
    QByteArray lines;
    for (int i = 0; i < 300; ++i) // binary, with NULs and line ends among it
        lines += char((i * 37) & 0xff);
    lines += "\n0 value=" + QByteArray(5000, '9') + '\n';
    lines += "0 colour=red\n0 value=\"1\\x002\"\n0 value=\x01\x1b[2J\n0 value=\"-1.5\n"
             "99999999999 value=3\n"
             "0 deviceType=ABCDEFGHIJKLMNOPQRSTUVWXYZ value=-1234567890.1234567\n"
             "400 value=-1.00 flag=1\n400 end\n";
    QVERIFY(root.writeFile("/scenario.txt", lines));

    QProcess probe;
    probe.setWorkingDirectory(root.path());
    probe.start(LUMENPROBE_PATH, QStringList() << "--scenario" << root.file("/scenario.txt"));
    QVERIFY(probe.waitForFinished(20000));
    QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
    QCOMPARE(probe.exitCode(), 0);
    const QByteArray errors = probe.readAllStandardError();
    QVERIFY2(errors.contains("line skipped") && errors.contains("cut"), errors.constData());
    QCOMPARE(QByteArray(r->wavelenth) + '|' + QByteArray(r->unit) + '|' + QByteArray(r->value) + '|'
                     + QByteArray::number(r->flag) + '|' + QByteArray::number(r->needSave) + '|'
                     + QByteArray(r->deviceType, int(strnlen(r->deviceType, 16))),
             QByteArray("||-1.00|0|0|ABCDEFGHIJKLMNO"));
}

QTEST_MAIN(TestLumenProbe)
#include "tst_lumenprobe.moc"
