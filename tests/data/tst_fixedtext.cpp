// Bounded copies into fixed text fields: nothing runs past a field, and measurements that do not
// fit keep their unit.
#include "fixedText.h"

#include <QtTest>

#include <cstring>

namespace {

// A 16-byte field with guard bytes on both sides, to see any write outside it.
struct GuardedField
{
    char before[8];
    char field[16];
    char after[8];

    GuardedField()
    {
        std::memset(before, '<', sizeof before);
        std::memset(field, '#', sizeof field);
        std::memset(after, '>', sizeof after);
    }
    bool guardsIntact() const
    {
        for (size_t i = 0; i < sizeof before; ++i)
            if (before[i] != '<' || after[i] != '>')
                return false;
        return true;
    }
};

const char* nullOr(const QByteArray& text, bool isNull) { return isNull ? nullptr : text.constData(); }

} // namespace

class TestFixedText : public QObject
{
    Q_OBJECT
private slots:
    void copy_data();
    void copy();
    void copyMeasurement_data();
    void copyMeasurement();
    void copyField_data();
    void copyField();
    void zeroSizedField();
    void equals_data();
    void equals();
};

void TestFixedText::copy_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<bool>("isNull");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("null") << QByteArray() << true << QByteArray();
    QTest::newRow("empty") << QByteArray("") << false << QByteArray();
    QTest::newRow("short") << QByteArray("dBm") << false << QByteArray("dBm");
    QTest::newRow("exact fit") << QByteArray("123456789012345") << false << QByteArray("123456789012345");
    QTest::newRow("one too long") << QByteArray("1234567890123456") << false << QByteArray("123456789012345");
    QTest::newRow("far too long") << QByteArray(300, 'x') << false << QByteArray(15, 'x');
}

void TestFixedText::copy()
{
    QFETCH(QByteArray, source);
    QFETCH(bool, isNull);
    QFETCH(QByteArray, stored);
    GuardedField g;
    FixedText::copy(g.field, nullOr(source, isNull));
    QCOMPARE(QByteArray(g.field), stored);
    QVERIFY(g.guardsIntact());
}

void TestFixedText::copyMeasurement_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<bool>("isNull");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("null") << QByteArray() << true << QByteArray();
    QTest::newRow("empty") << QByteArray("") << false << QByteArray();
    QTest::newRow("fits") << QByteArray("-12.340 dBm") << false << QByteArray("-12.340 dBm");
    QTest::newRow("exact fit") << QByteArray("-1.500000 dB/km") << false << QByteArray("-1.500000 dB/km");
    QTest::newRow("one digit dropped") << QByteArray("-12.500000 dB/km") << false
                                       << QByteArray("-12.50000 dB/km");
    QTest::newRow("several digits dropped") << QByteArray("-1234.500000 dB/mi") << false
                                            << QByteArray("-1234.500 dB/mi");
    QTest::newRow("every digit and the point dropped") << QByteArray("-1234567.500000 dB/km") << false
                                                       << QByteArray("-1234567 dB/km");
    QTest::newRow("still too long: cut") << QByteArray("-12345678.500000 dB/km") << false
                                         << QByteArray("-12345678.50000");
    QTest::newRow("no fraction: cut") << QByteArray("-123456789012 dB/km") << false
                                      << QByteArray("-123456789012 d");
    QTest::newRow("no unit: cut") << QByteArray("-12.5000000000000") << false
                                  << QByteArray("-12.5000000000000").left(15);
    QTest::newRow("point only in the unit: cut") << QByteArray("12 dB.km/xxxxxxxxx") << false
                                                 << QByteArray("12 dB.km/xxxxxx");
    QTest::newRow("placeholder") << QByteArray("---.--") << false << QByteArray("---.--");
}

void TestFixedText::copyMeasurement()
{
    QFETCH(QByteArray, source);
    QFETCH(bool, isNull);
    QFETCH(QByteArray, stored);
    GuardedField g;
    FixedText::copyMeasurement(g.field, nullOr(source, isNull));
    QCOMPARE(QByteArray(g.field), stored);
    QVERIFY(g.guardsIntact());
}

void TestFixedText::copyField_data()
{
    QTest::addColumn<QByteArray>("source"); // exactly 16 bytes
    QTest::addColumn<int>("targetSize");
    QTest::addColumn<QByteArray>("stored");
    const QByteArray full("ABCDEFGHIJKLMNOP");
    QTest::newRow("no NUL into the same width") << full << 16 << QByteArray("ABCDEFGHIJKLMNO");
    QTest::newRow("no NUL into a wider field") << full << 64 << QByteArray("ABCDEFGHIJKLMNO");
    QTest::newRow("no NUL into a narrower field") << full << 8 << QByteArray("ABCDEFG");
    QTest::newRow("NUL inside") << QByteArray("dBm\0XXXXXXXXXXXX", 16) << 16 << QByteArray("dBm");
    QTest::newRow("empty") << QByteArray(16, '\0') << 16 << QByteArray();
}

void TestFixedText::copyField()
{
    QFETCH(QByteArray, source);
    QFETCH(int, targetSize);
    QFETCH(QByteArray, stored);
    QCOMPARE(source.size(), 16);
    char src[16];
    std::memcpy(src, source.constData(), sizeof src);
    QByteArray target(targetSize + 2, '#'); // one guard byte on each side
    FixedText::copyField(target.data() + 1, size_t(targetSize), src, sizeof src);
    QCOMPARE(QByteArray(target.constData() + 1), stored);
    QCOMPARE(target.front(), '#');
    QCOMPARE(target.back(), '#');
}

void TestFixedText::zeroSizedField()
{
    char field[4] = { 'a', 'b', 'c', 'd' };
    FixedText::copy(field, 0, "xyz");
    FixedText::copyMeasurement(field, 0, "-12.500000 dB/km");
    FixedText::copyField(field, 0, "xyz", 4);
    QCOMPARE(QByteArray(field, 4), QByteArray("abcd"));
    QCOMPARE(FixedText::length(field, 0), size_t(0));
}

void TestFixedText::equals_data()
{
    QTest::addColumn<QByteArray>("field"); // exactly 8 bytes
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("equal");
    QTest::newRow("same") << QByteArray("dBm\0\0\0\0\0", 8) << QByteArray("dBm") << true;
    QTest::newRow("prefix of the field") << QByteArray("dBm\0\0\0\0\0", 8) << QByteArray("dB") << false;
    QTest::newRow("field is a prefix") << QByteArray("dB\0\0\0\0\0\0", 8) << QByteArray("dBm") << false;
    QTest::newRow("full field: first 7") << QByteArray("12345678") << QByteArray("1234567") << true;
    QTest::newRow("full field: all 8") << QByteArray("12345678") << QByteArray("12345678") << false;
    QTest::newRow("empty") << QByteArray(8, '\0') << QByteArray("") << true;
}

void TestFixedText::equals()
{
    QFETCH(QByteArray, field);
    QFETCH(QByteArray, text);
    QFETCH(bool, equal);
    QCOMPARE(field.size(), 8);
    char raw[8];
    std::memcpy(raw, field.constData(), sizeof raw);
    QCOMPARE(FixedText::equals(raw, text.constData()), equal);
}

QTEST_APPLESS_MAIN(TestFixedText)
#include "tst_fixedtext.moc"
