// Stored setup texts that the settings class would read as something else: a list at a comma,
// a comment at a semicolon, a typed value at an '@', or a text running on at an open quote.
// Each comes back as the operator or the previous save wrote it, and the file written back
// reads the same, for the page and for QSettings.
#include "devicePaths.h"
#include "opmSetupConfig.h"
#include "testSupport.h"

#include <QFile>
#include <QSettings>
#include <QtTest>

class TestSetupTexts : public QObject
{
    Q_OBJECT
private slots:
    void keptAsWritten_data();
    void keptAsWritten();
};

void TestSetupTexts::keptAsWritten_data()
{
    QTest::addColumn<QByteArray>("line"); // the value of Reference850 in the file
    QTest::addColumn<QString>("text");
    QTest::newRow("commas") << QByteArray("1,5") << "1,5";
    QTest::newRow("commas and blanks") << QByteArray("1, 5") << "1, 5";
    QTest::newRow("commas, as a save quotes them") << QByteArray("\"1,5\"") << "1,5";
    QTest::newRow("quote, as a save escapes it") << QByteArray("a\\\"b") << "a\"b";
    QTest::newRow("quote left open") << QByteArray("a\"b") << "a\"b";
    QTest::newRow("quoted word") << QByteArray("a \"b\" c") << "a \"b\" c";
    QTest::newRow("semicolon") << QByteArray("-1.5;x") << "-1.5;x";
    QTest::newRow("typed value") << QByteArray("@Rect(1 2 3 4)") << "@Rect(1 2 3 4)";
    QTest::newRow("invalid value") << QByteArray("@Invalid()") << "@Invalid()";
    QTest::newRow("byte array") << QByteArray("@ByteArray(-3)") << "@ByteArray(-3)";
    QTest::newRow("at sign, as a save doubles it") << QByteArray("@@x") << "@x";
    QTest::newRow("at sign") << QByteArray("@x") << "@x";
}

void TestSetupTexts::keptAsWritten()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, text);
    TestDeviceRoot root;
    const QString file = DevicePaths::settingFile();
    QVERIFY(root.writeFile("/home/Setting/opmSetup.conf",
        "[COpmSetup]\nReference850=" + line + "\nReference1310=-2\n"));
    QByteArray firstSave;
    {
        COpmSetupConfig config;
        QCOMPARE(config.mreference850, text);
        QCOMPARE(config.mreference1310, QString("-2"));
        firstSave = root.readFile("/home/Setting/opmSetup.conf");
    }
    // A copy, so that QSettings parses the file rather than serve what it cached on writing it.
    const QString copy = root.file("/copy.conf");
    QVERIFY(QFile::copy(file, copy));
    QSettings written(copy, QSettings::IniFormat);
    QCOMPARE(written.value("COpmSetup/Reference850").type(), QVariant::String);
    QCOMPARE(written.value("COpmSetup/Reference850").toString(), text);
    QCOMPARE(written.value("COpmSetup/Reference1310").toString(), QString("-2"));

    COpmSetupConfig again;
    QCOMPARE(again.mreference850, text);
    QCOMPARE(root.readFile("/home/Setting/opmSetup.conf"), firstSave);
}

QTEST_MAIN(TestSetupTexts)
#include "tst_setuptexts.moc"
