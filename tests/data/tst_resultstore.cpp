// The process-wide store of saved readings: stamping, the limit of twelve, copying out and
// clearing.
#include "fixedText.h"
#include "opmMain.h"

#include <QDateTime>
#include <QStringList>
#include <QtTest>

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

// The values of a list after the store's records are appended to it.
QString withStored(std::list<Result> list)
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
    void store();
};

// An add stamps the caller's record and the stored copy with the local time, to the second. The
// thirteenth reading drops the oldest; the copies are appended to what a list holds, oldest
// first. The newest record of an empty store is zero-filled.
void TestResultStore::store()
{
    ::store()->clearAllresultItem();
    QCOMPARE(bytesOf(::store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
    Result first = reading(1);
    const QDateTime before = QDateTime::currentDateTime();
    ::store()->addResultItem(first);
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(bytesOf(::store()->getLastResultItem()), bytesOf(first));
    const QString format("yyyy-MM-dd HH:mm:ss");
    QVERIFY2(first.time == before.toString(format) || first.time == after.toString(format), first.time);

    for (int n = 2; n <= 13; ++n) {
        Result r = reading(n);
        ::store()->addResultItem(r);
    }
    QCOMPARE(::store()->getResultItemCount(), 12);
    QCOMPARE(QString::fromLatin1(::store()->getLastResultItem().value), QString("13"));
    QCOMPARE(withStored(std::list<Result>(1, reading(100))), QString("100 2 3 4 5 6 7 8 9 10 11 12 13"));
    ::store()->clearAllresultItem();
    QCOMPARE(withStored(std::list<Result>()), QString());
    QCOMPARE(bytesOf(::store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
}

QTEST_APPLESS_MAIN(TestResultStore)
#include "tst_resultstore.moc"
