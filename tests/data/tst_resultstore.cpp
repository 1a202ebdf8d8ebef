// The process-wide store of saved readings: stamping, the limit of twelve, copying out and
// clearing. The store outlives every test, so each one starts and ends with it empty.
#include "fixedText.h"
#include "opmMain.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QtTest>

#include <cstring>
#include <ctime>
#include <list>

namespace {

Result reading(int number)
{
    Result r;
    std::memset(&r, 0, sizeof r);
    FixedText::copy(r.testMode, "Power Meter");
    FixedText::copy(r.waveLenth, "1550");
    FixedText::copy(r.value, QByteArray::number(number).append(".000 dBm").constData());
    FixedText::copy(r.pass, "YES");
    r.isLimit = true;
    return r;
}

QByteArray valueOf(const Result& r) { return QByteArray(r.value, int(FixedText::length(r.value))); }

QList<QByteArray> storedValues()
{
    std::list<Result> all;
    CBrovaOpmDataEngine::getSingleInstance()->getAllResultItem(all);
    QList<QByteArray> values;
    for (const Result& r : all)
        values << valueOf(r);
    return values;
}

QList<QByteArray> expectedValues(int first, int last)
{
    QList<QByteArray> values;
    for (int n = first; n <= last; ++n)
        values << valueOf(reading(n));
    return values;
}

bool isZeroFilled(const Result& r)
{
    const Result zero = {};
    return std::memcmp(&r, &zero, sizeof r) == 0;
}

} // namespace

class TestResultStore : public QObject
{
    Q_OBJECT
private slots:
    void init() { CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem(); }
    void cleanup() { CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem(); }

    void singleInstance();
    void firstAddStampsBothCopies();
    void keepsTheNewestTwelve_data();
    void keepsTheNewestTwelve();
    void getAllAppends();
    void clearingEmptyStore();
    void lastOfEmptyStoreIsZeroFilled();
    void sameSecondSameStamp();
};

void TestResultStore::singleInstance()
{
    QVERIFY(CBrovaOpmDataEngine::getSingleInstance() != nullptr);
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance(), CBrovaOpmDataEngine::getSingleInstance());
}

void TestResultStore::firstAddStampsBothCopies()
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    Result record = reading(1);
    const QDateTime before = QDateTime::currentDateTime();
    store->addResultItem(record);
    const QDateTime after = QDateTime::currentDateTime();

    QCOMPARE(store->getResultItemCount(), 1);
    const QString stamp = QString::fromLatin1(record.time);
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}$"))
                     .match(stamp).hasMatch(),
             qPrintable(stamp));
    const QDateTime stamped = QDateTime::fromString(stamp, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    QVERIFY(stamped.isValid());
    QVERIFY2(stamped >= before.addSecs(-2) && stamped <= after.addSecs(2), qPrintable(stamp));

    const Result last = store->getLastResultItem();
    QCOMPARE(std::memcmp(&last, &record, sizeof record), 0);
}

void TestResultStore::keepsTheNewestTwelve_data()
{
    QTest::addColumn<int>("added");
    QTest::addColumn<int>("oldestKept");
    QTest::newRow("11") << 11 << 1;
    QTest::newRow("12") << 12 << 1;
    QTest::newRow("13: oldest dropped") << 13 << 2;
    QTest::newRow("30") << 30 << 19;
}

// The page refuses a thirteenth reading itself; the store still never holds more than twelve.
void TestResultStore::keepsTheNewestTwelve()
{
    QFETCH(int, added);
    QFETCH(int, oldestKept);
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    for (int n = 1; n <= added; ++n) {
        Result r = reading(n);
        store->addResultItem(r);
    }
    QCOMPARE(store->getResultItemCount(), added - oldestKept + 1);
    QCOMPARE(storedValues(), expectedValues(oldestKept, added));
    QCOMPARE(valueOf(store->getLastResultItem()), valueOf(reading(added)));
}

void TestResultStore::getAllAppends()
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    for (int n = 1; n <= 3; ++n) {
        Result r = reading(n);
        store->addResultItem(r);
    }
    std::list<Result> list { reading(100), reading(101) };
    store->getAllResultItem(list);

    QList<QByteArray> values;
    for (const Result& r : list)
        values << valueOf(r);
    QCOMPARE(values, expectedValues(100, 101) + expectedValues(1, 3));
    QCOMPARE(store->getResultItemCount(), 3);
    QCOMPARE(storedValues(), expectedValues(1, 3));
}

void TestResultStore::clearingEmptyStore()
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    store->clearAllresultItem();
    QCOMPARE(store->getResultItemCount(), 0);
    std::list<Result> list { reading(7) };
    store->getAllResultItem(list);
    QCOMPARE(list.size(), size_t(1));

    Result r = reading(8);
    store->addResultItem(r);
    QCOMPARE(store->getResultItemCount(), 1);
}

void TestResultStore::lastOfEmptyStoreIsZeroFilled()
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    QVERIFY(isZeroFilled(store->getLastResultItem()));
    Result r = reading(1);
    store->addResultItem(r);
    QVERIFY(!isZeroFilled(store->getLastResultItem()));
    store->clearAllresultItem();
    QVERIFY(isZeroFilled(store->getLastResultItem()));
}

void TestResultStore::sameSecondSameStamp()
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    Result first = reading(1);
    Result second = reading(2);
    // A second may turn between the two adds; it cannot turn within two quick tries in a row.
    for (int attempt = 0; attempt < 2; ++attempt) {
        store->clearAllresultItem();
        const time_t start = time(nullptr);
        store->addResultItem(first);
        store->addResultItem(second);
        if (time(nullptr) == start)
            break;
    }
    QCOMPARE(QByteArray(second.time), QByteArray(first.time));
    std::list<Result> all;
    store->getAllResultItem(all);
    QCOMPARE(all.size(), size_t(2));
    QCOMPARE(QByteArray(all.back().time), QByteArray(all.front().time));
}

QTEST_APPLESS_MAIN(TestResultStore)
#include "tst_resultstore.moc"
