// The setup file: defaults and write-back on load, every key on every save, the dump, and
// files or folders that cannot be used.
#include "devicePaths.h"
#include "opm.h"
#include "stdoutCapture.h"
#include "testSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using Section = QMap<QString, QString>;

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

const char kSettingFile[] = "/home/Setting/opmSetup.conf";

Section defaults()
{
    Section values;
    for (const Expected& e : kExpected)
        values.insert(QLatin1String(e.key), QLatin1String(e.defaultValue));
    return values;
}

Section fieldsOf(const COpmSetupConfig& config)
{
    Section values;
    for (const Expected& e : kExpected)
        values.insert(QLatin1String(e.key), config.*e.field);
    return values;
}

// The [COpmSetup] section as the file's text holds it, read from disk (QSettings would answer
// from its process-wide cache). Quoted values are unquoted.
Section sectionOnDisk(const TestDeviceRoot& root)
{
    Section values;
    bool inSection = false;
    const QList<QByteArray> lines = root.readFile(QLatin1String(kSettingFile)).split('\n');
    for (const QByteArray& raw : lines) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inSection = line == QLatin1String("[COpmSetup]");
            continue;
        }
        const int eq = line.indexOf(QLatin1Char('='));
        if (!inSection || eq < 0)
            continue;
        QString value = line.mid(eq + 1).trimmed();
        if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
            value = value.mid(1, value.size() - 2);
        values.insert(line.left(eq).trimmed(), value);
    }
    return values;
}

// The thirteen keys of a section; QSettings keeps any other lines of the file as they were.
Section setupKeys(const Section& section)
{
    Section values;
    for (const Expected& e : kExpected) {
        const QString key = QLatin1String(e.key);
        if (section.contains(key))
            values.insert(key, section.value(key));
    }
    return values;
}

Section withChanges(Section values, const Section& changes)
{
    for (auto it = changes.cbegin(); it != changes.cend(); ++it)
        values.insert(it.key(), it.value());
    return values;
}

QByteArray expectedDump(const Section& v)
{
    QByteArray text;
    const char* const order[][2] = {
        { "mWaveLenth", "Wavelength" },          { "mTestMode", "TestMode" },
        { "mUnit", "UNIT" },                     { "mPowerLimit", "PowerLimit" },
        { "mPowerLimitMin", "PowerLimitMinimum" }, { "mPowerLimitMax", "PowerLimitMaximum" },
        { "mlossLength", "LossLength" },         { "mreference850", "Reference850" },
        { "mreference1310", "Reference1310" },   { "mreference1490", "Reference1490" },
        { "mreference1550", "Reference1550" },   { "mreference1625", "Reference1625" },
    };
    for (const auto& line : order)
        text += QByteArray(line[0]) + ' ' + v.value(QLatin1String(line[1])).toLatin1() + " \n";
    return text;
}

// Bytes that are no INI text: NULs, high bytes, stray brackets, quotes and equals signs.
QByteArray binaryGarbage()
{
    QByteArray bytes;
    quint32 state = 12345;
    for (int i = 0; i < 4096; ++i) {
        state = state * 1103515245u + 12345u;
        bytes.append(char(state >> 16));
    }
    return bytes;
}

} // namespace

class TestSetupConfig : public QObject
{
    Q_OBJECT
private slots:
    void firstStartCreatesFolderAndDefaults();
    void storedFile_data();
    void storedFile();
    void saveRewritesEveryKey();
    void numbersTravelAsWritten_data();
    void numbersTravelAsWritten();
    void dumpIsLatin1();
    void garbageFile_data();
    void garbageFile();
    void unusableFolder_data();
    void unusableFolder();
    void traceOncePerFailure();
};

void TestSetupConfig::firstStartCreatesFolderAndDefaults()
{
    TestDeviceRoot root;
    QVERIFY(root.isValid());
    QVERIFY(!QFileInfo::exists(root.file(QStringLiteral("/home/Setting"))));

    StdoutCapture capture;
    COpmSetupConfig config;
    const QByteArray out = capture.take();

    QVERIFY(QFileInfo(root.file(QStringLiteral("/home/Setting"))).isDir());
    QCOMPARE(sectionOnDisk(root), defaults());
    QCOMPARE(fieldsOf(config), defaults());
    QVERIFY(capture.isValid());
    QCOMPARE(out, QByteArray("COpmSetupConfigSave \n") + expectedDump(defaults()));
}

void TestSetupConfig::storedFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<Section>("changes");

    QTest::newRow("some keys missing")
            << QByteArray("[COpmSetup]\nWavelength=1550\nUNIT=mW\nReference1310=-3.25\n")
            << Section { { "Wavelength", "1550" }, { "UNIT", "mW" }, { "Reference1310", "-3.25" } };
    QTest::newRow("loss unit dB kept as stored")
            << QByteArray("[COpmSetup]\nLossUnit=dB\n") << Section { { "LossUnit", "dB" } };
    QTest::newRow("values outside the domains kept")
            << QByteArray("[COpmSetup]\nWavelength=980\nTestMode=Bogus\nPowerLimit=maybe\n")
            << Section { { "Wavelength", "980" }, { "TestMode", "Bogus" }, { "PowerLimit", "maybe" } };
    QTest::newRow("empty value kept")
            << QByteArray("[COpmSetup]\nUNIT=\n") << Section { { "UNIT", "" } };
    QTest::newRow("long reference kept whole")
            << QByteArray("[COpmSetup]\nReference850=-12.3456789012345678901\n")
            << Section { { "Reference850", "-12.3456789012345678901" } };
    QTest::newRow("keys are case-sensitive")
            << QByteArray("[COpmSetup]\nunit=mW\nwavelength=1310\n") << Section {};
    QTest::newRow("other sections ignored")
            << QByteArray("[Other]\nUNIT=uW\n[COpmSetup]\nTestMode=LossMeter\n")
            << Section { { "TestMode", "LossMeter" } };
    QTest::newRow("unquoted commas read as one text")
            << QByteArray("[COpmSetup]\nUNIT=a, b\nReference850=1,2,3\n")
            << Section { { "UNIT", "a, b" }, { "Reference850", "1, 2, 3" } };
    QTest::newRow("typed values without text fall back")
            << QByteArray("[COpmSetup]\nTestMode=@Rect(1 2 3 4)\nWavelength=@Invalid()\n")
            << Section {};
    QTest::newRow("typed byte array read as text")
            << QByteArray("[COpmSetup]\nUNIT=@ByteArray(uW)\n") << Section { { "UNIT", "uW" } };
}

void TestSetupConfig::storedFile()
{
    QFETCH(QByteArray, file);
    QFETCH(Section, changes);
    TestDeviceRoot root;
    QVERIFY(root.writeFile(QLatin1String(kSettingFile), file));

    COpmSetupConfig config;

    const Section expected = withChanges(defaults(), changes);
    QCOMPARE(fieldsOf(config), expected);
    QCOMPARE(setupKeys(sectionOnDisk(root)), expected);
}

void TestSetupConfig::saveRewritesEveryKey()
{
    TestDeviceRoot root;
    COpmSetupConfig config;
    QVERIFY(QFile::remove(root.file(QLatin1String(kSettingFile))));

    config.mTestMode = QStringLiteral("LossMeter");
    config.COpmSetupConfigSave();

    const Section expected = withChanges(defaults(), { { "TestMode", "LossMeter" } });
    QCOMPARE(sectionOnDisk(root), expected);
    COpmSetupConfig reloaded;
    QCOMPARE(fieldsOf(reloaded), expected);
}

void TestSetupConfig::numbersTravelAsWritten_data()
{
    QTest::addColumn<float>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("1.0") << 1.0f << "1";
    QTest::newRow("2.50") << 2.50f << "2.5";
    QTest::newRow("-60") << -60.0f << "-60";
    QTest::newRow("-12.5") << -12.5f << "-12.5";
    QTest::newRow("0.1") << 0.1f << "0.1";
    QTest::newRow("1234567") << 1234567.0f << "1.23457e+06";
    QTest::newRow("0.00001") << 0.00001f << "1e-05";
}

// The page writes its float limits and length with 'g' and six digits; the file must keep that
// text as it is, not as a number of its own.
void TestSetupConfig::numbersTravelAsWritten()
{
    QFETCH(float, number);
    QFETCH(QString, text);
    TestDeviceRoot root;
    {
        COpmSetupConfig config;
        config.mPowerLimitMin = QString::number(number, 'g', 6);
        config.mPowerLimitMax = QString::number(number, 'g', 6);
        config.mlossLength = QString::number(number, 'g', 6);
        config.COpmSetupConfigSave();
    }
    const Section onDisk = sectionOnDisk(root);
    QCOMPARE(onDisk.value(QStringLiteral("PowerLimitMinimum")), text);
    QCOMPARE(onDisk.value(QStringLiteral("PowerLimitMaximum")), text);
    QCOMPARE(onDisk.value(QStringLiteral("LossLength")), text);
    COpmSetupConfig reloaded;
    QCOMPARE(reloaded.mlossLength, text);
}

void TestSetupConfig::dumpIsLatin1()
{
    TestDeviceRoot root;
    {
        COpmSetupConfig config;
        config.mUnit = QString::fromUtf8("\xc2\xb5W");
        config.mlossUnit = QStringLiteral("km");
        config.COpmSetupConfigSave();
    }
    StdoutCapture capture;
    COpmSetupConfig reloaded;
    const QByteArray out = capture.take();

    QVERIFY(capture.isValid());
    QVERIFY2(out.contains("\nmUnit \xb5W \n"), out.constData());
    QVERIFY(!out.contains("mlossUnit"));
    QVERIFY(!out.contains("km"));
}

void TestSetupConfig::garbageFile_data()
{
    QTest::addColumn<QByteArray>("file");
    const QByteArray binary = binaryGarbage();
    QTest::newRow("binary") << binary;
    QTest::newRow("binary inside the section") << QByteArray("[COpmSetup]\n") + binary;
    QTest::newRow("unterminated quote") << QByteArray("[COpmSetup]\nTestMode=\"LossMeter\n");
    QTest::newRow("unterminated section") << QByteArray("[COpmSetup\nUNIT=mW\n");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("only NULs") << QByteArray(1024, '\0');
}

// Whatever the parser makes of the file, every field is a defined text, the file is rewritten
// with all keys, and the next start loads exactly what this one kept.
void TestSetupConfig::garbageFile()
{
    QFETCH(QByteArray, file);
    TestDeviceRoot root;
    QVERIFY(root.writeFile(QLatin1String(kSettingFile), file));

    COpmSetupConfig config;

    const Section loaded = fieldsOf(config);
    for (auto it = loaded.cbegin(); it != loaded.cend(); ++it)
        QVERIFY2(!it.value().isNull(), qPrintable(it.key()));
    QCOMPARE(setupKeys(sectionOnDisk(root)).keys(), defaults().keys());
    COpmSetupConfig reloaded;
    QCOMPARE(fieldsOf(reloaded), loaded);
}

void TestSetupConfig::unusableFolder_data()
{
    QTest::addColumn<QString>("blocker");
    QTest::addColumn<bool>("creationFails");
    QTest::newRow("setting folder is a file") << "/home/Setting" << false;
    QTest::newRow("home is a file") << "/home" << true;
    QTest::newRow("read-only setting folder") << "" << false;
}

void TestSetupConfig::unusableFolder()
{
    QFETCH(QString, blocker);
    QFETCH(bool, creationFails);
    TestDeviceRoot root;
    const QString settingDir = root.file(QStringLiteral("/home/Setting"));

    if (blocker.isEmpty()) {
        if (geteuid() == 0)
            QSKIP("folder permissions do not bind root; the file-in-the-way rows cover this");
        QVERIFY(root.writeFile(QLatin1String(kSettingFile), "[COpmSetup]\nUNIT=mW\n"));
        QVERIFY(chmod(QFile::encodeName(settingDir).constData(), 0500) == 0);
    } else {
        if (QFileInfo(root.file(blocker)).isDir())
            QVERIFY(QDir().rmdir(root.file(blocker)));
        QVERIFY(root.writeFile(blocker, "in the way"));
    }

    StdoutCapture capture;
    COpmSetupConfig config;
    config.mTestMode = QStringLiteral("LossMeter");
    config.COpmSetupConfigSave();
    const QByteArray out = capture.take();
    chmod(QFile::encodeName(settingDir).constData(), 0700);

    const QByteArray writeTrace = "COpmSetupConfig cannot write "
            + QFile::encodeName(DevicePaths::settingFile()) + " \n";
    const QByteArray createTrace = "COpmSetupConfig cannot create "
            + QFile::encodeName(DevicePaths::settingDir()) + " \n";
    QVERIFY(capture.isValid());
    QCOMPARE(out.count(writeTrace), 1);
    QCOMPARE(out.count(createTrace), creationFails ? 1 : 0);
    QCOMPARE(config.mTestMode, QStringLiteral("LossMeter"));
    QCOMPARE(config.mUnit, QLatin1String(blocker.isEmpty() ? "mW" : "dB"));
    if (!blocker.isEmpty())
        QCOMPARE(root.readFile(blocker), QByteArray("in the way"));
}

// After a failure has been traced, saves stay quiet until one succeeds; the setup in memory
// then reaches the file, and a new failure is traced again.
void TestSetupConfig::traceOncePerFailure()
{
    TestDeviceRoot root;
    const QString blocker = root.file(QStringLiteral("/home/Setting"));
    QVERIFY(root.writeFile(QStringLiteral("/home/Setting"), "in the way"));
    const QByteArray trace = "cannot write " + QFile::encodeName(DevicePaths::settingFile());

    StdoutCapture failing;
    COpmSetupConfig config;
    config.mUnit = QStringLiteral("uW");
    config.COpmSetupConfigSave();
    config.COpmSetupConfigSave();
    const QByteArray failingOut = failing.take();
    QCOMPARE(failingOut.count(trace), 1);

    QVERIFY(QFile::remove(blocker));
    QVERIFY(QDir().mkdir(blocker));
    StdoutCapture recovering;
    config.COpmSetupConfigSave();
    const QByteArray recoveringOut = recovering.take();
    QCOMPARE(recoveringOut.count(trace), 0);
    QCOMPARE(sectionOnDisk(root), withChanges(defaults(), { { "UNIT", "uW" } }));

    QVERIFY(QDir(blocker).removeRecursively());
    QVERIFY(root.writeFile(QStringLiteral("/home/Setting"), "in the way"));
    StdoutCapture failingAgain;
    config.COpmSetupConfigSave();
    QCOMPARE(failingAgain.take().count(trace), 1);
}

QTEST_GUILESS_MAIN(TestSetupConfig)
#include "tst_setupconfig.moc"
