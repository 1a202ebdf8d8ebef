// A record no reader should write: texts that fill their fields without a NUL, and every byte
// rewritten at random by another process while the page polls as fast as it can. Reads past a
// field are the sanitizer build's to catch; here the page must stay sane.
#include "opmPageProbe.h"

#include <csignal>
#include <cstdint>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using P = OpmPageProbe;

namespace {

constexpr int kTicks = 100000;

// Every text the label may show: a reading in any unit, the module's state, or nothing yet.
const QRegExp kDefined(QString::fromLatin1(
        "^(-?(nan|inf|\\d+\\.\\d+) (dBm|dB|mW|uW|dB/km|dB/mi)|OPM Not Connected!|---\\.--|)$"));

// Fills a text field to its last byte, cutting or padding with NULs.
template <size_t N>
void fill(char (&field)[N], const QByteArray& text)
{
    std::memset(field, 0, N);
    std::memcpy(field, text.constData(), qMin(size_t(text.size()), N));
}

// Rewrites the record word by word as fast as it can, in a child process, until killed: the
// page sees torn mixes of old and new words. Half the words are number-like text.
pid_t startScribbler(OpmShareRecord* record)
{
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    static const char numberish[] = "0123456789-.e +n";
    auto* words = reinterpret_cast<volatile uint32_t*>(record);
    uint32_t state = uint32_t(getpid()) | 1u;
    for (;;) {
        for (size_t i = 0; i < sizeof(OpmShareRecord) / sizeof(uint32_t); ++i) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            uint32_t word = state;
            if (state & 0x100u) {
                word = 0;
                for (int b = 0; b < 4; ++b)
                    word |= uint32_t(uint8_t(numberish[(state >> (4 * b + 12)) & 15])) << (8 * b);
            }
            words[i] = word;
        }
    }
}

// Facts every tick must leave, whatever the record held: a label of a known form, the saved
// texts and the capture ended within their fields, the bar on its scale.
QString insane(NerioOpm* page)
{
    const Keys state = P::state(page);
    if (!TestCompat::containsMatch(kDefined, state.value("label")))
        return "label '" + state.value("label") + '\'';
    if (state.value("terminated") != "1" || state.value("barInScale") != "1")
        return "terminated " + state.value("terminated") + ", bar " + state.value("bar");
    return QString();
}

} // namespace

class TestRecordFaults : public QObject
{
    Q_OBJECT
private slots:
    void unterminatedTexts_data();
    void unterminatedTexts();
    void scribbledRecord();
};

void TestRecordFaults::unterminatedTexts_data()
{
    QTest::addColumn<QList<QByteArray>>("texts"); // wavelenth, unit, value, deviceType
    QTest::addColumn<Keys>("expected");

    QTest::newRow("wavelength") << QList<QByteArray> { "16251625", "dBm", "-3.5", "" }
            << Keys { { "label", "-3.500 dBm" }, { "wave", "0/0" }, { "waveLenth", "1625162" } };
    // Not "dB": no sign put in front.
    QTest::newRow("unit") << QList<QByteArray> { "1310", "dBdBdBdB", "3.5", "" }
            << Keys { { "label", "3.500 dBm" }, { "unitButton", "dBm" }, { "wave", "1/1" },
                      { "waveLenth", "1310" } };
    QTest::newRow("every text") << QList<QByteArray> { "13101310", "dBmdBmdB", "-7.25xxxxxxxxxxx",
                                                    "DDDDDDDDDDDDDDDD" }
            << Keys { { "label", "-7.250 dBm" }, { "value", "-7.250 dBm" }, { "wave", "0/0" },
                      { "waveLenth", "1310131" }, { "capture", "-7.25xxxxxxxxxx/0" } };
}

// Each text is read as far as its last byte, which counts as its end: in what the page shows,
// saves and traces.
void TestRecordFaults::unterminatedTexts()
{
    QFETCH(QList<QByteArray>, texts);
    QFETCH(Keys, expected);

    PageFixture fx;
    OpmShareRecord* r = fx.reader.record();
    fill(r->wavelenth, texts[0]);
    fill(r->unit, texts[1]);
    fill(r->value, texts[2]);
    fill(r->deviceType, texts[3]);
    r->flag = OpmFlagReading;
    StdoutCapture capture;
    fx.act("tick; click save");
    const QByteArray trace = capture.take();
    fx.verify(with(expected, { { "terminated", "1" }, { "stored", "1" } }));
    const QByteArray line = "Opm.wavelenth (" + expected.value("waveLenth").toLatin1() + ") \n";
    QVERIFY2(trace.contains(line), trace.constData());
}

// Random bytes in every field while the page ticks in every mode: nothing breaks, and a proper
// record afterwards is shown as if nothing had happened.
void TestRecordFaults::scribbledRecord()
{
    PageFixture fx({ { "PowerLimit", "enable" } });
    NerioOpm* page = fx.get();
    const QStringList setups { "click dBm", "click mW", "click uW",
                               "choose mode 1; choose lossUnit 0", "choose lossUnit 1",
                               "choose lossUnit 2; choose mode 0" };
    const pid_t writer = startScribbler(fx.reader.record());
    QVERIFY(writer > 0);
    OPM_TRY_VERIFY(fx.reader.record()->deviceType[0] != 0, 5000);

    QString failure;
    {
        // Each tick traces; 100 000 of them would only bury the test's own output.
        StdoutCapture quiet(StdoutCapture::Discard);
        for (int i = 0; i < kTicks && failure.isEmpty(); ++i) {
            if (i % (kTicks / setups.size() + 1) == 0)
                fx.act(setups[i / (kTicks / setups.size() + 1)]);
            P::tick(page);
            if (i % 1000 == 0)
                failure = insane(page);
        }
    }
    ::kill(writer, SIGKILL);
    int status = 0;
    QCOMPARE(waitpid(writer, &status, 0), writer);
    QVERIFY2(failure.isEmpty(), qPrintable(failure));
    // It wrote until it was stopped.
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);

    std::memset(fx.reader.record(), 0, sizeof(OpmShareRecord));
    fx.act("click dBm; show 1550 -12.34");
    fx.verify({ { "label", "-12.340 dBm" }, { "colour", "green" }, { "wave", "3/3" },
                { "waveLenth", "1550" }, { "value", "-12.340 dBm" }, { "capture", "-12.34/0" },
                { "needSave", "0" }, { "terminated", "1" }, { "barInScale", "1" } });
    QVERIFY(insane(page).isEmpty());
}

QTEST_MAIN(TestRecordFaults)
#include "tst_recordfaults.moc"
