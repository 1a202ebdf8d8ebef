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
    Result r;
    std::memset(&r, 0, sizeof r);
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

// The reading numbers of a list after the store's records are appended to it, oldest first.
QString withStored(std::list<Result> list = std::list<Result>())
{
    store()->getAllResultItem(list);
    QStringList numbers;
    for (std::list<Result>::const_iterator it = list.begin(); it != list.end(); ++it)
        numbers << QString::fromLatin1(it->value);
    return numbers.join(" ");
}

QByteArray bytesOf(const Result& r) { return QByteArray(reinterpret_cast<const char*>(&r), sizeof r); }

} // namespace

class TestResultStore : public QObject
{
    Q_OBJECT
private slots:
    void init() { store()->clearAllresultItem(); }
    void addStampsBothCopies();
    void twelveAtMost();
};

// The add stamps the caller's record and the stored copy with the local time, to the second;
// the newest record of an empty store is zero-filled.
void TestResultStore::addStampsBothCopies()
{
    QCOMPARE(bytesOf(store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
    Result first = reading(1);
    const QDateTime before = QDateTime::currentDateTime();
    store()->addResultItem(first);
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(bytesOf(store()->getLastResultItem()), bytesOf(first));
    const QString stamp = QString::fromLatin1(first.time);
    const QString format("yyyy-MM-dd HH:mm:ss");
    QVERIFY2(stamp == before.toString(format) || stamp == after.toString(format), qPrintable(stamp));
    add(2, 2);
    QCOMPARE(QString::fromLatin1(store()->getLastResultItem().value), QString("2"));
    store()->clearAllresultItem();
    QCOMPARE(store()->getResultItemCount(), 0);
    QCOMPARE(bytesOf(store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
}

// The thirteenth reading drops the oldest; the copies are appended to what the list holds.
void TestResultStore::twelveAtMost()
{
    add(1, 12);
    QCOMPARE(withStored(), QString("1 2 3 4 5 6 7 8 9 10 11 12"));
    add(13, 13);
    QCOMPARE(store()->getResultItemCount(), 12);
    std::list<Result> list(1, reading(100));
    QCOMPARE(withStored(list), QString("100 2 3 4 5 6 7 8 9 10 11 12 13"));
}

QTEST_APPLESS_MAIN(TestResultStore)
#include "tst_resultstore.moc"
