// Saving the displayed reading into the result store, from the Save button and from the reader.
#include "opmPageProbe.h"

#include <QtTest>

#include <cstring>
#include <list>

using P = OpmPageProbe;

namespace {

CBrovaOpmDataEngine* store() { return CBrovaOpmDataEngine::getSingleInstance(); }

void showReading(PageFixture& fx, const char* value)
{
    fx.reader.setReading("1550", "dBm", value);
    P::tick(fx.get());
}

// Every field of two records but the time stamp.
bool sameReading(const Result& a, const Result& b)
{
    return std::memcmp(&a, &b, offsetof(Result, time)) == 0;
}

} // namespace

class TestOpmSave : public QObject
{
    Q_OBJECT
private slots:
    void fullStore_data();
    void fullStore();
    void onlyValidReadings_data();
    void onlyValidReadings();
    void savesWhatIsShown();
};

void TestOpmSave::fullStore_data()
{
    QTest::addColumn<bool>("byReader");
    QTest::newRow("Save button") << false;
    QTest::newRow("reader's request") << true;
}

void TestOpmSave::fullStore()
{
    QFETCH(bool, byReader);

    ModalBoxCloser closer;
    PageFixture fx;
    showReading(fx, "-12.34");
    for (int i = 0; i < 12; ++i)
        P::m_pSave(fx.get())->click();
    QCOMPARE(store()->getResultItemCount(), 12);
    QCOMPARE(closer.count(), 0);

    if (byReader) {
        fx.record()->needSave = 1;
        P::tick(fx.get());
        QCOMPARE(fx.record()->needSave, 0);
    } else {
        P::m_pSave(fx.get())->click();
    }
    QCOMPARE(closer.count(), 1);
    QCOMPARE(closer.boxes().first().title, QString("Warning"));
    QCOMPARE(closer.boxes().first().text, QString("Exceeds max allowed results!"));
    QCOMPARE(store()->getResultItemCount(), 12);
}

void TestOpmSave::onlyValidReadings_data()
{
    QTest::addColumn<int>("flag");
    QTest::addColumn<int>("stored");

    QTest::newRow("no reading") << 0 << 0;
    QTest::newRow("not connected") << 2 << 0;
    QTest::newRow("other state") << 3 << 0;
    QTest::newRow("reading") << 1 << 1;
}

// The reader's state at the moment of the save decides, not the one last displayed.
void TestOpmSave::onlyValidReadings()
{
    QFETCH(int, flag);
    QFETCH(int, stored);

    ModalBoxCloser closer;
    PageFixture fx;
    showReading(fx, "-12.34");
    fx.record()->flag = flag;
    P::m_pSave(fx.get())->click();
    QCOMPARE(store()->getResultItemCount(), stored);
    QCOMPARE(closer.count(), 0);
}

void TestOpmSave::savesWhatIsShown()
{
    ModalBoxCloser closer;
    PageFixture fx;
    showReading(fx, "-12.34");
    P::m_pSave(fx.get())->click();
    P::m_pSave(fx.get())->click();

    // On hold the page keeps the held reading, whatever the reader says meanwhile.
    P::m_pHold(fx.get())->click();
    fx.reader.setReading("1310", "dBm", "-3");
    P::tick(fx.get());
    P::m_pSave(fx.get())->click();

    std::list<Result> saved;
    store()->getAllResultItem(saved);
    QCOMPARE(int(saved.size()), 3);
    for (const Result& r : saved) {
        QVERIFY(sameReading(r, saved.front()));
        QCOMPARE(fieldText(r.value), QString("-12.340 dBm"));
        QCOMPARE(fieldText(r.waveLenth), QString("1550"));
        QVERIFY(!fieldText(r.time).isEmpty());
    }
    QVERIFY(sameReading(saved.front(), P::m_result(fx.get())));
}

QTEST_MAIN(TestOpmSave)
#include "tst_opmsave.moc"
