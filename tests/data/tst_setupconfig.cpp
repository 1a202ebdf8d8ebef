// The setup file: defaults and write-back on load, every key on every save, and files or
// folders that cannot be used.
#include "opm.h"
#include "testSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QtTest>

using Section = TestCompat::StringMap;

namespace {

struct Expected
{
    QString COpmSetupConfig::*field;
    const char* key;
    const char* defaultValue;
};

const Expected kExpected[] = {
    { &COpmSetupConfig::mWaveLenth, "Wavelength", "850" },
    { &COpmSetupConfig::mTestMode, "TestMode", "PowerMeter" },
    { &COpmSetupConfig::mUnit, "UNIT", "dB" },
    { &COpmSetupConfig::mPowerLimit, "PowerLimit", "disable" },
    { &COpmSetupConfig::mPowerLimitMin, "PowerLimitMinimum", "-60" },
    { &COpmSetupConfig::mPowerLimitMax, "PowerLimitMaximum", "10" },
    { &COpmSetupConfig::mlossUnit, "LossUnit", "db" },
    { &COpmSetupConfig::mlossLength, "LossLength", "1" },
    { &COpmSetupConfig::mreference850, "Reference850", "0" },
    { &COpmSetupConfig::mreference1310, "Reference1310", "0" },
    { &COpmSetupConfig::mreference1490, "Reference1490", "0" },
    { &COpmSetupConfig::mreference1550, "Reference1550", "0" },
    { &COpmSetupConfig::mreference1625, "Reference1625", "0" },
};

const QString kSettingFile = QString::fromLatin1("/home/Setting/opmSetup.conf");

// The defaults, with changes on top.
Section defaults(const Section& changes = Section())
{
    Section values;
    for (const Expected& e : kExpected)
        values.insert(e.key, e.defaultValue);
    values.insert(changes);
    return values;
}

Section fieldsOf(const COpmSetupConfig& config)
{
    Section values;
    for (const Expected& e : kExpected)
        values.insert(e.key, config.*e.field);
    return values;
}

// The [COpmSetup] section as the file's text holds it, quotes taken off; read from disk, since
// QSettings would answer from its process-wide cache.
Section sectionOnDisk(const TestDeviceRoot& root)
{
    Section values;
    QString group;
    const QString text = QString::fromUtf8(root.readFile(kSettingFile));
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const int eq = line.indexOf(QLatin1Char('='));
        if (line.startsWith(QLatin1Char('[')))
            group = line;
        else if (group == QLatin1String("[COpmSetup]") && eq > 0)
            values.insert(line.left(eq), line.mid(eq + 1).remove(QLatin1Char('"')));
    }
    return values;
}

} // namespace

class TestSetupConfig : public QObject
{
    Q_OBJECT
private slots:
    void storedFile_data();
    void storedFile();
    void saveRewritesEveryKey();
    void unusableFile_data();
    void unusableFile();
};

void TestSetupConfig::storedFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<Section>("changes"); // to the defaults
    QTest::newRow("first start: no folder, no file") << QByteArray() << Section {};
    QTest::newRow("some keys missing")
            << QByteArray("[COpmSetup]\nWavelength=1550\nUNIT=mW\nReference1310=-3.25\n")
            << Section { { "Wavelength", "1550" }, { "UNIT", "mW" }, { "Reference1310", "-3.25" } };
    QTest::newRow("loss unit dB kept as stored")
            << QByteArray("[COpmSetup]\nLossUnit=dB\n") << Section { { "LossUnit", "dB" } };
    QTest::newRow("10 kB value kept")
            << "[COpmSetup]\nLossLength=" + QByteArray(10240, '9') + '\n'
            << Section { { "LossLength", QString(10240, '9') } };
    QTest::newRow("unquoted commas kept as written")
            << QByteArray("[COpmSetup]\nUNIT=a, b\nReference850=1,2,3\n")
            << Section { { "UNIT", "a, b" }, { "Reference850", "1,2,3" } };
}

// Loading fills what is missing, keeps what is stored and writes every key straight back.
void TestSetupConfig::storedFile()
{
    QFETCH(QByteArray, file);
    QFETCH(Section, changes);
    TestDeviceRoot root;
    QVERIFY(file.isNull() || root.writeFile(kSettingFile, file));
    QCOMPARE(QFileInfo(root.file(QString::fromLatin1("/home/Setting"))).exists(), !file.isNull());
    COpmSetupConfig config;
    QVERIFY(QFileInfo(root.file(QString::fromLatin1("/home/Setting"))).isDir());
    QCOMPARE(fieldsOf(config), defaults(changes));
    QCOMPARE(sectionOnDisk(root), defaults(changes));
}

// One change rewrites all thirteen keys. The page writes its numbers with 'g' and six digits;
// the file keeps that text.
void TestSetupConfig::saveRewritesEveryKey()
{
    TestDeviceRoot root;
    COpmSetupConfig config;
    QVERIFY(QFile::remove(root.file(kSettingFile)));
    config.mPowerLimitMin = QString::number(1.0f, 'g', 6);
    config.COpmSetupConfigSave();
    QCOMPARE(sectionOnDisk(root), defaults({ { "PowerLimitMinimum", "1" } }));

    config.mPowerLimitMax = QString::number(2.50f, 'g', 6);
    config.COpmSetupConfigSave();
    QCOMPARE(sectionOnDisk(root),
             defaults({ { "PowerLimitMinimum", "1" }, { "PowerLimitMaximum", "2.5" } }));
}

void TestSetupConfig::unusableFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("content");
    QByteArray binary("[COpmSetup]\n"); // then NULs, high bytes, brackets, quotes, equals signs
    for (int i = 0; i < 4096; ++i)
        binary.append(char(i * 37 + i / 256));
    QTest::newRow("binary file") << kSettingFile << binary;
    QTest::newRow("setting folder is a file") << "/home/Setting" << QByteArray("in the way");
    QTest::newRow("home is a file") << "/home" << QByteArray("in the way");
}

// No key of the setup can be read: the page goes on with the defaults and its changes in
// memory. A file in the way is left alone.
void TestSetupConfig::unusableFile()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, content);
    TestDeviceRoot root;
    QDir().rmdir(root.file(path)); // "/home" is there, "/home/Setting" not yet
    QVERIFY(root.writeFile(path, content));

    COpmSetupConfig config;
    QCOMPARE(fieldsOf(config), defaults());
    config.mTestMode = QString::fromLatin1("LossMeter");
    config.COpmSetupConfigSave();
    QCOMPARE(fieldsOf(config), defaults({ { "TestMode", "LossMeter" } }));
    if (path != kSettingFile)
        QCOMPARE(root.readFile(path), content);
}

OPM_TEST_GUILESS_MAIN(TestSetupConfig)
#include "tst_setupconfig.moc"
