// What the pages rely on in the stand-ins of the set's toolkit and EEPROM service.
#include "ckeypadfactory.h"
#include "clineedit.h"
#include "cwidgetstyle.h"
#include "devicePaths.h"
#include "plate2promserv.h"
#include "testSupport.h"

#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <cstring>

namespace {

// Plays the operator on a keypad: notes what it shows as "title|text|selected text|modal",
// types into its entry and presses the named button. False when it does not offer them.
bool operateKeyPad(QWidget* box, const QString& typed, const QString& button, QString* shown)
{
    auto* edit = box->findChild<QLineEdit*>();
    if (!edit)
        return false;
    const bool modal = box->isModal() || box->windowModality() != Qt::NonModal;
    *shown = QStringList(
        { box->windowTitle(), edit->text(), edit->selectedText(), modal ? "modal" : "modeless" })
                 .join("|");
    QTest::keyClicks(edit, typed);
    for (QPushButton* b : box->findChildren<QPushButton*>()) {
        if (b->text() == button) {
            b->click();
            return true;
        }
    }
    return false;
}

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private slots:
    void screenRegionsGivePageSize();
    void keyPad_data();
    void keyPad();
    void e2prom_data();
    void e2prom();
};

void TestPlatform::screenRegionsGivePageSize()
{
    QCOMPARE(
        CWidgetStyle::getScreenRegion(0).width() - CWidgetStyle::getScreenRegion(3).width() - 2,
        658);
    QCOMPARE(CWidgetStyle::getScreenRegion(5).width(), 398);
}

void TestPlatform::keyPad_data()
{
    QTest::addColumn<bool>("fromField");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("ok"); // else Cancel
    const int numeric = CKeyPadFactory::KeyPadNumeric;
    const int text = CKeyPadFactory::KeyPadText;
    QTest::newRow("numeric OK") << false << numeric << "-3.25" << true;
    QTest::newRow("numeric Cancel") << false << numeric << "99" << false;
    QTest::newRow("text OK") << false << text << "OPM_0001" << true;
    QTest::newRow("text Cancel") << false << text << "other" << false;
    QTest::newRow("field OK") << true << numeric << "-7.5" << true;
    QTest::newRow("field Cancel") << true << numeric << "-7.5" << false;
}

// Called directly, or opened by touching a field with a keypad type, as the pages do.
void TestPlatform::keyPad()
{
    QFETCH(bool, fromField);
    QFETCH(int, type);
    QFETCH(QString, typed);
    QFETCH(bool, ok);
    const QString button = ok ? QString::fromLatin1("OK") : QString::fromLatin1("Cancel");
    const QString expected = ok ? typed : QString::fromLatin1("12.5"); // Cancel: the text as given

    CLineEdit field(QString::fromLatin1("12.5"));
    field.setSKPType(type);
    field.setRange(-60, 10);
    field.show();
    QVERIFY(TestCompat::waitForShown(&field));
    QSignalSpy edits(&field, SIGNAL(textEdited(QString)));
    QString shown;
    bool operated = false;
    ModalBoxCloser closer;
    closer.handler
        = [&](QWidget* box) { return operated = operateKeyPad(box, typed, button, &shown); };
    QString result;
    if (fromField) {
        QTest::mouseClick(&field, Qt::LeftButton);
        result = field.text();
    } else {
        result = CKeyPadFactory::accessKeyPad(
            QString::fromLatin1("Minimum"), QString::fromLatin1("12.5"), type, -60, 10, &field);
    }
    QVERIFY(operated);
    QCOMPARE(closer.count(), 1);
    QCOMPARE(shown.section('|', fromField ? 1 : 0),
        QString::fromLatin1("Minimum|12.5|12.5|modal").section('|', fromField ? 1 : 0));
    QCOMPARE(result, expected);
    // The field takes the text on OK and says so once; on Cancel nothing happens.
    QCOMPARE(edits.count(), fromField && ok ? 1 : 0);
    if (!edits.isEmpty())
        QCOMPARE(edits.first().first().toString(), expected);
}

void TestPlatform::e2prom_data()
{
    // A null content means no file at all; an empty expectation means the read must fail.
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("mac");
    QTest::addColumn<QByteArray>("sn");
    const QByteArray mac = QByteArray::fromHex("001a2b3c4d5e");
    QTest::newRow("good") << QByteArray("mac=00:1a:2b:3c:4d:5e\nsn=BR-0001234\n") << mac
                          << QByteArray("BR-0001234");
    QTest::newRow("longest serial")
        << "sn=" + QByteArray(31, 'S') << QByteArray() << QByteArray(31, 'S');
    QTest::newRow("overlong serial")
        << "mac=00:1a:2b:3c:4d:5e\nsn=" + QByteArray(32, 'S') << mac << QByteArray();
    QTest::newRow("too few bytes")
        << QByteArray("mac=00:1a:2b:3c:4d\nsn=\n") << QByteArray() << QByteArray();
    QTest::newRow("missing file") << QByteArray() << QByteArray() << QByteArray();
}

void TestPlatform::e2prom()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, mac);
    QFETCH(QByteArray, sn);
    const char guard = char(0xA5);

    TestDeviceRoot root;
    QVERIFY(root.isValid());
    if (!content.isNull())
        QVERIFY(root.writeFile(QString::fromLatin1("/etc/brova/e2prom.txt"), content));
    halmanager::PlatE2PromServ eeprom(deviceRoot());

    char macOut[6 + 8];
    std::memset(macOut, guard, sizeof macOut);
    QCOMPARE(eeprom.ReadMacAddr(macOut) == 0, !mac.isEmpty());
    QCOMPARE(QByteArray(macOut, sizeof macOut),
        (mac.isEmpty() ? QByteArray(6, guard) : mac) + QByteArray(8, guard));

    char snOut[halmanager::PlatE2PromServ::kSerialSize + 8];
    std::memset(snOut, guard, sizeof snOut);
    QCOMPARE(eeprom.ReadSN(snOut) == 0, !sn.isEmpty());
    if (!sn.isEmpty())
        QCOMPARE(QByteArray(snOut), sn);
    QCOMPARE(QByteArray(snOut + halmanager::PlatE2PromServ::kSerialSize, 8), QByteArray(8, guard));
}

QTEST_MAIN(TestPlatform)
#include "tst_platform.moc"
