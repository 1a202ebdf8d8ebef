// Bounded copies into fixed text fields: nothing runs past a field, and measurements that do not
// fit keep their unit.
#include "fixedText.h"

#include <QtTest>

#include <cstring>
#include <functional>

namespace {

// What a copy leaves in a 16-byte field between guard bytes; "overrun" when it wrote outside.
QString copiedInto16(const std::function<void(char*)>& copy)
{
    char bytes[32];
    std::memset(bytes, '#', sizeof bytes);
    copy(bytes + 8);
    if (QByteArray(bytes, 8) + QByteArray(bytes + 24, 8) != QByteArray(16, '#'))
        return QString::fromLatin1("overrun");
    return QString::fromLatin1(bytes + 8, int(qstrnlen(bytes + 8, 16)));
}

} // namespace

class TestFixedText : public QObject
{
    Q_OBJECT
private slots:
    void copy_data();
    void copy();
};

// Every row goes through the plain copy, the copy of a 16-byte field of another record (the
// source with garbage behind its NUL, or its first 16 bytes and no NUL) and the copy of a
// measurement.
void TestFixedText::copy_data()
{
    QTest::addColumn<QString>("source"); // a null text stands for a null pointer
    QTest::addColumn<QString>("copied");
    QTest::addColumn<QString>("measured");
    QTest::newRow("null") << QString() << "" << "";
    QTest::newRow("one too long") << "1234567890123456" << "123456789012345" << "123456789012345";
    QTest::newRow("exact fit") << "-1.500000 dB/km" << "-1.500000 dB/km" << "-1.500000 dB/km";
    QTest::newRow("one digit dropped") << "-12.500000 dB/km" << "-12.500000 dB/k"
                                       << "-12.50000 dB/km";
    QTest::newRow("every digit and the point dropped")
            << "-1234567.500000 dB/km" << "-1234567.500000" << "-1234567 dB/km";
    QTest::newRow("still too long: cut") << "-12345678.500000 dB/km" << "-12345678.50000"
                                         << "-12345678.50000";
    QTest::newRow("point only in the unit: cut") << "12 dB.km/xxxxxxxxx" << "12 dB.km/xxxxxx"
                                                 << "12 dB.km/xxxxxx";
}

void TestFixedText::copy()
{
    QFETCH(QString, source);
    QFETCH(QString, copied);
    QFETCH(QString, measured);
    const QByteArray bytes = source.toLatin1();
    const char* src = source.isNull() ? nullptr : bytes.constData();
    char field[16];
    std::memset(field, 'X', sizeof field);
    std::memcpy(field, bytes.constData(), std::min(sizeof field, size_t(bytes.size()) + 1));

    QCOMPARE(copiedInto16([src](char* f) { FixedText::copy(f, 16, src); }), copied);
    QCOMPARE(copiedInto16([&field](char* f) { FixedText::copyField(f, 16, field, 16); }), copied);
    QCOMPARE(copiedInto16([src](char* f) { FixedText::copyMeasurement(f, 16, src); }), measured);
}

QTEST_APPLESS_MAIN(TestFixedText)
#include "tst_fixedtext.moc"
