// The process-wide store of saved readings: stamping, the limit of twelve, copying out and
// clearing. The store outlives every test, so each one starts with it empty.
#include "fixedText.h"
#include "opmMain.h"

#include <QDateTime>
#include <QtTest>

#include <ctime>
#include <list>

namespace {

CBrovaOpmDataEngine* store() { return CBrovaOpmDataEngine::getSingleInstance(); }

// Reading number n carries n as its value text.
Result reading(int n)
{
    Result r = {};
    FixedText::copy(r.testMode, "Power Meter");
    FixedText::copy(r.value, QByteArray::number(n).constData());
    return r;
}

void add(int first, int last)
{
    for (int n = first; n <= last; ++n) {
        Result r = reading(n);
        store()->addResultItem(r);
    }
}

// The reading numbers of a list, oldest first, after appending the store's records to it.
QList<int> withStored(std::list<Result> list = {})
{
    store()->getAllResultItem(list);
    QList<int> numbers;
    for (const Result& r : list)
        numbers << QByteArray(r.value, int(FixedText::length(r.value))).toInt();
    return numbers;
}

QByteArray bytesOf(const Result& r)
{
    return QByteArray(reinterpret_cast<const char*>(&r), sizeof r);
}

} // namespace

class TestResultStore : public QObject
{
    Q_OBJECT
private slots:
    void init() { store()->clearAllresultItem(); }
    void addStampsBothCopies();
    void thirteenthDropsTheOldest();
    void getAllAppends();
    void emptyStore();
};

// The first add stamps the caller's record and the stored copy; the next add within the same
// second carries the same stamp.
void TestResultStore::addStampsBothCopies()
{
    Result first = reading(1);
    Result second = reading(2);
    QDateTime before;
    // A second may turn between the two adds; it cannot turn within two quick tries in a row.
    for (int attempt = 0; attempt < 2; ++attempt) {
        store()->clearAllresultItem();
        before = QDateTime::currentDateTime();
        const time_t start = time(nullptr);
        store()->addResultItem(first);
        QCOMPARE(store()->getResultItemCount(), 1);
        QCOMPARE(bytesOf(store()->getLastResultItem()), bytesOf(first));
        store()->addResultItem(second);
        if (time(nullptr) == start)
            break;
    }
    const QString stamp = QString::fromLatin1(first.time);
    const QString format = QString::fromLatin1("yyyy-MM-dd HH:mm:ss");
    const QDateTime stamped = QDateTime::fromString(stamp, format);
    QCOMPARE(stamped.toString(format), stamp);
    QVERIFY2(stamped >= before.addSecs(-2) && stamped <= QDateTime::currentDateTime().addSecs(2),
             qPrintable(stamp));
    QCOMPARE(QByteArray(second.time), QByteArray(first.time));
    QCOMPARE(QByteArray(store()->getLastResultItem().time), QByteArray(first.time));
}

void TestResultStore::thirteenthDropsTheOldest()
{
    add(1, 12);
    QCOMPARE(withStored(), QList<int>({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 }));
    add(13, 13);
    QCOMPARE(store()->getResultItemCount(), 12);
    QCOMPARE(withStored(), QList<int>({ 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13 }));
}

void TestResultStore::getAllAppends()
{
    add(1, 3);
    QCOMPARE(withStored({ reading(100), reading(101) }), QList<int>({ 100, 101, 1, 2, 3 }));
    QCOMPARE(withStored(), QList<int>({ 1, 2, 3 }));
}

// Clearing an empty store does nothing; the newest record of an empty store is zero-filled.
void TestResultStore::emptyStore()
{
    store()->clearAllresultItem();
    QCOMPARE(store()->getResultItemCount(), 0);
    QCOMPARE(withStored({ reading(7) }), QList<int>({ 7 }));
    QCOMPARE(bytesOf(store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
    add(1, 1);
    store()->clearAllresultItem();
    QCOMPARE(bytesOf(store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
}

QTEST_APPLESS_MAIN(TestResultStore)
#include "tst_resultstore.moc"
