// What the application relies on in the stand-ins of the set's toolkit and EEPROM service.
#include "ckeypadfactory.h"
#include "clineedit.h"
#include "cmessagebox.h"
#include "cwidgetstyle.h"
#include "devicePaths.h"
#include "plate2promserv.h"
#include "testSupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <cstring>
#include <memory>

namespace {

const char kGuard = char(0xA5);

// What a modal keypad showed, and what the operator did with it.
struct KeyPadVisit
{
    bool seen = false;
    bool modal = false;
    QString title;
    QString text;
    QString selected;
};

QPushButton* buttonWithText(QWidget* box, const QString& text)
{
    for (QPushButton* b : box->findChildren<QPushButton*>()) {
        if (b->text() == text)
            return b;
    }
    return nullptr;
}

// Plays the operator on a keypad: notes what it shows, types or taps the entry, then closes it
// with the given action. Returns false when the keypad did not offer what was needed.
bool operateKeyPad(QWidget* box, const QString& typed, bool tapKeys, const QString& action,
                   KeyPadVisit* visit)
{
    auto* edit = box->findChild<QLineEdit*>();
    visit->seen = true;
    visit->modal = box->isModal() || box->windowModality() != Qt::NonModal;
    visit->title = box->windowTitle();
    if (!edit)
        return false;
    visit->text = edit->text();
    visit->selected = edit->selectedText();
    if (tapKeys) {
        edit->clear();
        for (const QChar c : typed) {
            QPushButton* key = buttonWithText(box, c);
            if (!key)
                return false;
            key->click();
        }
    } else {
        QTest::keyClicks(edit, typed);
    }
    if (action == QLatin1String("Enter") || action == QLatin1String("Escape")) {
        QTest::keyClick(edit, action == QLatin1String("Enter") ? Qt::Key_Return : Qt::Key_Escape);
        return true;
    }
    QPushButton* button = buttonWithText(box, action);
    if (!button)
        return false;
    button->click();
    return true;
}

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private slots:
    void screenRegionsGivePageSize();
    void coloursOfPageAndDialog();

    void keyPad_data();
    void keyPad();
    void lineEditOpensKeyPad_data();
    void lineEditOpensKeyPad();
    void lineEditTyping_data();
    void lineEditTyping();

    void messageBoxInformation();

    void e2prom_data();
    void e2prom();
};

void TestPlatform::screenRegionsGivePageSize()
{
    const int width = CWidgetStyle::getScreenRegion(0).width()
            - CWidgetStyle::getScreenRegion(3).width() - 2;
    QCOMPARE(width, 658);
    QCOMPARE(CWidgetStyle::getScreenRegion(5).width(), 398);
    // The page sits in the work area beside the side panel, inside the screen.
    const QRect work = CWidgetStyle::getScreenRegion(4);
    QCOMPARE(work.size(), QSize(658, 398));
    QVERIFY(CWidgetStyle::getScreenRegion(0).contains(work));
    QVERIFY(!work.intersects(CWidgetStyle::getScreenRegion(3)));
}

void TestPlatform::coloursOfPageAndDialog()
{
    // White captions are drawn on code 0, dark text on code 1.
    QVERIFY(CWidgetStyle::getColor(0).lightness() < 80);
    QVERIFY(CWidgetStyle::getColor(1).lightness() > 180);
}

void TestPlatform::keyPad_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("tapKeys");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("expected");
    QTest::newRow("numeric OK") << 3 << "-3.25" << false << "OK" << "-3.25";
    QTest::newRow("numeric Enter") << 3 << "17" << false << "Enter" << "17";
    QTest::newRow("numeric keys OK") << 3 << "-4.5" << true << "OK" << "-4.5";
    QTest::newRow("numeric Cancel") << 3 << "99" << false << "Cancel" << "12.5";
    QTest::newRow("numeric Escape") << 3 << "99" << false << "Escape" << "12.5";
    QTest::newRow("text OK") << 5 << "OPM_0001" << false << "OK" << "OPM_0001";
    QTest::newRow("text keys Enter") << 5 << "AB-7" << true << "Enter" << "AB-7";
    QTest::newRow("text Cancel") << 5 << "other" << false << "Cancel" << "12.5";
}

void TestPlatform::keyPad()
{
    QFETCH(int, type);
    QFETCH(QString, typed);
    QFETCH(bool, tapKeys);
    QFETCH(QString, action);
    QFETCH(QString, expected);

    QWidget parent;
    parent.show();
    KeyPadVisit visit;
    bool operated = false;
    ModalBoxCloser closer;
    closer.handler = [&](QWidget* box) {
        operated = operateKeyPad(box, typed, tapKeys, action, &visit);
        return operated;
    };
    const QString result = CKeyPadFactory::accessKeyPad(QStringLiteral("Minimum"),
                                                        QStringLiteral("12.5"), type, -60, 10,
                                                        &parent);
    QVERIFY(visit.seen);
    QVERIFY(operated);
    QCOMPARE(closer.count(), 1);
    QVERIFY(visit.modal);
    QCOMPARE(visit.title, QStringLiteral("Minimum"));
    QCOMPARE(visit.text, QStringLiteral("12.5"));
    QCOMPARE(visit.selected, QStringLiteral("12.5"));
    QCOMPARE(result, expected);
}

void TestPlatform::lineEditOpensKeyPad_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("edits");
    QTest::newRow("OK") << "OK" << "-7.5" << 1;
    QTest::newRow("Enter") << "Enter" << "-7.5" << 1;
    QTest::newRow("Cancel") << "Cancel" << "10.00" << 0;
    QTest::newRow("Escape") << "Escape" << "10.00" << 0;
}

void TestPlatform::lineEditOpensKeyPad()
{
    QFETCH(QString, action);
    QFETCH(QString, expected);
    QFETCH(int, edits);

    CLineEdit edit(QStringLiteral("10.00"));
    edit.setSKPType(CKeyPadFactory::KeyPadNumeric);
    edit.setRange(-60, 10);
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    QSignalSpy spy(&edit, &QLineEdit::textEdited);

    KeyPadVisit visit;
    bool operated = false;
    ModalBoxCloser closer;
    closer.handler = [&](QWidget* box) {
        operated = operateKeyPad(box, QStringLiteral("-7.5"), false, action, &visit);
        return operated;
    };
    QTest::mouseClick(&edit, Qt::LeftButton);

    QVERIFY(visit.seen);
    QVERIFY(operated);
    QVERIFY(visit.modal);
    QCOMPARE(visit.text, QStringLiteral("10.00"));
    QCOMPARE(edit.text(), expected);
    QCOMPARE(spy.count(), edits);
    if (edits)
        QCOMPARE(spy.first().first().toString(), expected);
}

void TestPlatform::lineEditTyping_data()
{
    QTest::addColumn<int>("keyPadType");
    QTest::newRow("no keypad") << -1;
    QTest::newRow("numeric keypad") << int(CKeyPadFactory::KeyPadNumeric);
}

void TestPlatform::lineEditTyping()
{
    QFETCH(int, keyPadType);
    CLineEdit edit;
    edit.setSKPType(keyPadType);
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    QSignalSpy spy(&edit, &QLineEdit::textEdited);
    ModalBoxCloser closer;

    QTest::keyClicks(&edit, QStringLiteral("-12"));

    QCOMPARE(closer.count(), 0);
    QCOMPARE(edit.text(), QStringLiteral("-12"));
    QCOMPARE(spy.count(), 3);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("-12"));
}

void TestPlatform::messageBoxInformation()
{
    QWidget parent;
    parent.resize(658, 398);
    parent.show();
    CMessageBox box(&parent);
    box.setButtonText(QMessageBox::Ok, QStringLiteral("Confirm"));

    bool seen = false;
    bool modal = false;
    bool titleAboveText = false;
    QString title;
    QString caption;
    QString text;
    QString okText;
    ModalBoxCloser closer;
    closer.handler = [&](QWidget* shown) {
        seen = shown == &box;
        modal = box.isModal() || box.windowModality() != Qt::NonModal;
        title = box.windowTitle();
        auto* titleLabel = box.findChild<QLabel*>(QStringLiteral("title"));
        auto* textLabel = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        caption = titleLabel ? titleLabel->text() : QString();
        text = box.text();
        titleAboveText = titleLabel && textLabel && titleLabel->isVisible()
                && titleLabel->geometry().bottom() < textLabel->geometry().top();
        QAbstractButton* ok = box.button(QMessageBox::Ok);
        okText = ok ? ok->text() : QString();
        if (!ok)
            return false;
        ok->click();
        return true;
    };

    const int pressed = box.information(&parent, QStringLiteral("Error"),
                                        QStringLiteral("Minimum must be below maximum."));
    QVERIFY(seen);
    QVERIFY(modal);
    QCOMPARE(pressed, int(QMessageBox::Ok));
    QCOMPARE(title, QStringLiteral("Error"));
    QCOMPARE(caption, QStringLiteral("Error"));
    QCOMPARE(text, QStringLiteral("Minimum must be below maximum."));
    QCOMPARE(okText, QStringLiteral("Confirm"));
    QVERIFY(titleAboveText);
}

void TestPlatform::e2prom_data()
{
    QTest::addColumn<bool>("present");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("macOk");
    QTest::addColumn<QByteArray>("mac");
    QTest::addColumn<bool>("snOk");
    QTest::addColumn<QByteArray>("sn");

    const QByteArray mac = QByteArray::fromHex("001a2b3c4d5e");
    QTest::newRow("good") << true << QByteArray("mac=00:1a:2b:3c:4d:5e\nsn=BR-0001234\n")
                          << true << mac << true << QByteArray("BR-0001234");
    QTest::newRow("high bytes, dashes, CRLF")
            << true << QByteArray("sn=X\r\nmac=FF-80-a5-9C-00-7f\r\n") << true
            << QByteArray::fromHex("ff80a59c007f") << true << QByteArray("X");
    QTest::newRow("longest serial") << true << QByteArray("sn=" + QByteArray(31, 'S')) << false
                                    << QByteArray() << true << QByteArray(31, 'S');
    QTest::newRow("overlong serial")
            << true << QByteArray("mac=00:1a:2b:3c:4d:5e\nsn=" + QByteArray(32, 'S')) << true << mac
            << false << QByteArray();
    QTest::newRow("too few bytes") << true << QByteArray("mac=00:1a:2b:3c:4d\nsn=\n") << false
                                   << QByteArray() << false << QByteArray();
    QTest::newRow("too many bytes") << true << QByteArray("mac=00:1a:2b:3c:4d:5e:6f\n") << false
                                    << QByteArray() << false << QByteArray();
    QTest::newRow("single digits") << true << QByteArray("mac=0:1:2:3:4:5:6\n") << false
                                   << QByteArray() << false << QByteArray();
    QTest::newRow("junk") << true << QByteArray("mac=zz:yy:xx:ww:vv:uu\nsn\n") << false
                          << QByteArray() << false << QByteArray();
    QTest::newRow("binary") << true
                            << QByteArray("mac=\xff\xfe:00:11:22:33:44\nsn=A") + '\0'
                                    + QByteArray("B\x01\n")
                            << false << QByteArray() << false << QByteArray();
    QTest::newRow("serial not plain text") << true << QByteArray("sn=BR\t\xe9" "001\n") << false
                                           << QByteArray() << false << QByteArray();
    QTest::newRow("empty file") << true << QByteArray() << false << QByteArray() << false
                                << QByteArray();
    QTest::newRow("missing file") << false << QByteArray() << false << QByteArray() << false
                                  << QByteArray();
}

void TestPlatform::e2prom()
{
    QFETCH(bool, present);
    QFETCH(QByteArray, content);
    QFETCH(bool, macOk);
    QFETCH(QByteArray, mac);
    QFETCH(bool, snOk);
    QFETCH(QByteArray, sn);

    TestDeviceRoot root;
    QVERIFY(root.isValid());
    if (present)
        QVERIFY(root.writeFile(QStringLiteral("/etc/brova/e2prom.txt"), content));
    halmanager::PlatE2PromServ eeprom(deviceRoot());

    char macOut[6 + 8];
    std::memset(macOut, kGuard, sizeof macOut);
    const int macRc = eeprom.ReadMacAddr(macOut);
    QCOMPARE(macRc == 0, macOk);
    if (macOk)
        QCOMPARE(QByteArray(macOut, 6), mac);
    else
        QCOMPARE(QByteArray(macOut, 6), QByteArray(6, kGuard));
    QCOMPARE(QByteArray(macOut + 6, 8), QByteArray(8, kGuard));

    char snOut[halmanager::PlatE2PromServ::kSerialSize + 8];
    std::memset(snOut, kGuard, sizeof snOut);
    const int snRc = eeprom.ReadSN(snOut);
    QCOMPARE(snRc == 0, snOk);
    if (snOk)
        QCOMPARE(QByteArray(snOut), sn);
    QCOMPARE(QByteArray(snOut + halmanager::PlatE2PromServ::kSerialSize, 8), QByteArray(8, kGuard));
}

QTEST_MAIN(TestPlatform)
#include "tst_platform.moc"
