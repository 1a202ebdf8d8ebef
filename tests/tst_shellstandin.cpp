// The shell stand-in: which plug-in files it takes, which it refuses and why, and how it
// drives the one it takes.
#include "elfSection.h"
#include "verificationText.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <string>
#include <vector>

namespace {

const char kGoodText[] = "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=true\n"
                         "buildkey=i386 linux g++-4 full-config";

void putLe(QByteArray* bytes, int at, quint64 value, int width)
{
    for (int i = 0; i < width; ++i)
        (*bytes)[at + i] = char((value >> (8 * i)) & 0xff);
}

// A small ELF file of either class: a null section, .qtplugin holding payload and the name
// table. The offsets are kept so that tests can spoil them one by one.
struct ElfImage
{
    bool is64;
    QByteArray bytes;
    int shoff;

    int headerField(const char* name) const
    {
        const QByteArray n(name);
        if (n == "shoff")
            return is64 ? 0x28 : 0x20;
        if (n == "shentsize")
            return is64 ? 0x3a : 0x2e;
        if (n == "shnum")
            return is64 ? 0x3c : 0x30;
        return is64 ? 0x3e : 0x32; // shstrndx
    }
    int wordWidth() const { return is64 ? 8 : 4; }
    int entrySize() const { return is64 ? 64 : 40; }
    // Offset of a field of section header index.
    int sectionField(int index, const char* name) const
    {
        const QByteArray n(name);
        const int base = shoff + index * entrySize();
        if (n == "name")
            return base;
        if (n == "type")
            return base + 4;
        if (n == "offset")
            return base + (is64 ? 24 : 16);
        if (n == "size")
            return base + (is64 ? 32 : 20);
        return base + (is64 ? 40 : 24); // link
    }
    ElfImage patched(int at, quint64 value, int width) const
    {
        ElfImage copy = *this;
        putLe(&copy.bytes, at, value, width);
        return copy;
    }
    ElfImage header(const char* name, quint64 value) const
    {
        return patched(headerField(name), value, !qstrcmp(name, "shoff") ? wordWidth() : 2);
    }
    ElfImage section(int index, const char* name, quint64 value) const
    {
        const bool word = !qstrcmp(name, "offset") || !qstrcmp(name, "size");
        return patched(sectionField(index, name), value, word ? wordWidth() : 4);
    }
};

ElfImage makeElf(bool is64, const QByteArray& payload)
{
    const QByteArray names("\0.qtplugin\0.shstrtab\0", 21);
    ElfImage elf { is64, QByteArray(is64 ? 64 : 52, '\0'), 0 };
    const int payloadAt = elf.bytes.size();
    elf.bytes += payload;
    const int namesAt = elf.bytes.size();
    elf.bytes += names;
    while (elf.bytes.size() % 8)
        elf.bytes += '\0';
    elf.shoff = elf.bytes.size();
    elf.bytes += QByteArray(3 * elf.entrySize(), '\0');
    elf.bytes.replace(0, 7,
        QByteArray("\x7f"
                   "ELF",
            4)
            + char(is64 ? 2 : 1) + '\x01' + '\x01');
    elf = elf.header("shoff", quint64(elf.shoff))
              .header("shentsize", quint64(elf.entrySize()))
              .header("shnum", 3)
              .header("shstrndx", 2);
    return elf.section(1, "name", 1)
        .section(1, "type", 1)
        .section(1, "offset", quint64(payloadAt))
        .section(1, "size", quint64(payload.size()))
        .section(2, "name", 11)
        .section(2, "type", 3)
        .section(2, "offset", quint64(namesAt))
        .section(2, "size", quint64(names.size()));
}

QByteArray payload()
{
    return QByteArray(kGoodText, int(sizeof kGoodText));
}

struct ShellRun
{
    bool finished = false;
    int exitCode = -1;
    QString out;
    QString err;
};

ShellRun runShell(const QStringList& arguments, const QString& workDir)
{
    QProcess shell;
    shell.setWorkingDirectory(workDir);
    shell.start(QStringLiteral(OPMSHELL_PATH), arguments);
    ShellRun run;
    run.finished = shell.waitForStarted(30000) && shell.waitForFinished(60000)
        && shell.exitStatus() == QProcess::NormalExit;
    if (shell.state() != QProcess::NotRunning) {
        shell.kill();
        shell.waitForFinished(10000);
    }
    run.exitCode = shell.exitCode();
    run.out = QString::fromLocal8Bit(shell.readAllStandardOutput());
    run.err = QString::fromLocal8Bit(shell.readAllStandardError());
    return run;
}

} // namespace

Q_DECLARE_METATYPE(ElfImage)

class TestShellStandIn : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void checksVerificationText_data();
    void checksVerificationText();
    void readsSectionOfEitherClass_data();
    void readsSectionOfEitherClass();
    void refusesHostileElf_data();
    void refusesHostileElf();
    void refusesEveryTruncation_data();
    void refusesEveryTruncation();
    void readsBuiltPluginSection();

    void refusesPlugin_data();
    void refusesPlugin();
    void acceptsDemoPlugin();
    void drivesPluginAndQuitsInOrder();
    void refusesBadCommandLine_data();
    void refusesBadCommandLine();

private:
    QString writeFile(const QString& name, const QByteArray& bytes);
    bool readSection(const QString& path, QByteArray* bytes, QString* error);

    QTemporaryDir m_dir;
};

void TestShellStandIn::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

QString TestShellStandIn::writeFile(const QString& name, const QByteArray& bytes)
{
    const QString path = m_dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        return QString();
    return path;
}

bool TestShellStandIn::readSection(const QString& path, QByteArray* bytes, QString* error)
{
    std::vector<char> data;
    std::string reason;
    const bool ok = PluginVerify::readElfSection(
        QFile::encodeName(path).toStdString(), ".qtplugin", &data, &reason);
    *bytes = QByteArray(data.data(), int(data.size()));
    *error = QString::fromStdString(reason);
    return ok;
}

void TestShellStandIn::checksVerificationText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("reason");

    const QByteArray good(kGoodText);
    QTest::newRow("as the set ships it") << good << true << QString();
    QTest::newRow("release build")
        << QByteArray(good).replace("debug=true", "debug=false") << true << QString();
    QTest::newRow("trailing newline") << good + '\n' << true << QString();
    QTest::newRow("unknown item ignored") << good + "\nflavour=mild" << true << QString();
    QTest::newRow("older Qt") << QByteArray(good).replace("4.8.4", "4.8.3") << false
                              << QStringLiteral("Qt version \"4.8.3\"");
    QTest::newRow("64-bit key") << QByteArray(good).replace("i386", "x86_64") << false
                                << QStringLiteral("build key");
    QTest::newRow("another pattern")
        << QByteArray(good).replace("VERIFICATION_", "") << false << QStringLiteral("pattern");
    QTest::newRow("pattern not first")
        << QByteArray("version=4.8.4\npattern=QT_PLUGIN_VERIFICATION_DATA\ndebug=true\n"
                      "buildkey=i386 linux g++-4 full-config")
        << false << QStringLiteral("pattern line");
    QTest::newRow("no build key") << good.left(good.indexOf("\nbuildkey")) << false
                                  << QStringLiteral("no buildkey");
    QTest::newRow("version twice") << good + "\nversion=4.8.4" << false << QStringLiteral("twice");
    QTest::newRow("debug neither")
        << QByteArray(good).replace("debug=true", "debug=yes") << false << QStringLiteral("debug");
    QTest::newRow("line without equals")
        << QByteArray(good).replace("debug=true", "debug") << false << QStringLiteral("malformed");
    QTest::newRow("empty") << QByteArray() << false << QStringLiteral("malformed");
    QTest::newRow("binary") << QByteArray("\x01\xff\x7f=\n\n=\x80", 8) << false << QString();
}

void TestShellStandIn::checksVerificationText()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, accepted);
    QFETCH(QString, reason);
    std::string error;
    QCOMPARE(PluginVerify::checkVerificationText(text.toStdString(), &error), accepted);
    QVERIFY2(QString::fromStdString(error).contains(reason), error.c_str());
    QCOMPARE(error.empty(), accepted);
}

void TestShellStandIn::readsSectionOfEitherClass_data()
{
    QTest::addColumn<ElfImage>("elf");
    QTest::newRow("ELF64") << makeElf(true, payload());
    QTest::newRow("ELF32") << makeElf(false, payload());
    // More sections than the header can count: the count moves into the first header.
    QTest::newRow("ELF64 extended count")
        << makeElf(true, payload()).header("shnum", 0).section(0, "size", 3);
    QTest::newRow("ELF32 extended name index")
        << makeElf(false, payload()).header("shstrndx", 0xffff).section(0, "link", 2);
}

void TestShellStandIn::readsSectionOfEitherClass()
{
    QFETCH(ElfImage, elf);
    QByteArray bytes;
    QString error;
    QVERIFY2(readSection(writeFile(QStringLiteral("good.elf"), elf.bytes), &bytes, &error),
        qPrintable(error));
    QCOMPARE(bytes, payload());
    QCOMPARE(QByteArray::fromStdString(
                 PluginVerify::sectionText(bytes.constData(), size_t(bytes.size()))),
        QByteArray(kGoodText));
}

void TestShellStandIn::refusesHostileElf_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");

    for (bool is64 : { true, false }) {
        const ElfImage elf = makeElf(is64, payload());
        const QByteArray c = is64 ? "64: " : "32: ";
        auto row = [&c](const char* name) -> QTestData& {
            return QTest::newRow((c + name).constData());
        };
        row("empty") << QByteArray() << "not an ELF file";
        row("magic only") << elf.bytes.left(4) << "not an ELF file";
        row("text") << QByteArray("ELF\x7f plain text\n") << "not an ELF file";
        row("big-endian") << elf.patched(5, 2, 1).bytes << "little-endian";
        row("unknown class") << elf.patched(4, 3, 1).bytes << "class";
        row("header cut") << elf.bytes.left(is64 ? 60 : 48) << "truncated ELF header";
        row("table cut") << elf.bytes.left(elf.shoff + elf.entrySize()) << "section table outside";
        row("table at the end") << elf.header("shoff", quint64(elf.bytes.size())).bytes
                                << "section table outside";
        row("table offset wraps") << elf.header("shoff", is64 ? ~quint64(0x3f) : 0xffffffc0).bytes
                                  << "section table outside";
        row("no table") << elf.header("shoff", 0).bytes << "no section table";
        row("entries too small") << elf.header("shentsize", 16).bytes << "too small";
        row("entry size huge") << elf.header("shentsize", 0xffff).bytes << "section table outside";
        row("count too high") << elf.header("shnum", 0xfffe).bytes << "section table outside";
        row("extended count lies")
            << elf.header("shnum", 0).section(0, "size", is64 ? quint64(1) << 40 : 0xffffffff).bytes
            << "section table outside";
        row("name table index") << elf.header("shstrndx", 9).bytes << "index out of range";
        row("name table far away")
            << elf.section(2, "offset", is64 ? quint64(1) << 62 : 0xfffffff0).bytes
            << "name table outside";
        row("name table wraps") << elf.section(2, "size", is64 ? ~quint64(0) : 0xffffffff).bytes
                                << "name table outside";
        row("name beyond its table")
            << elf.section(1, "name", 0xfffffff).bytes << "no .qtplugin section";
        row("name without its NUL") << elf.section(2, "size", 10).bytes << "no .qtplugin section";
        row("section at the end") << elf.section(1, "offset", quint64(elf.bytes.size() - 2)).bytes
                                  << "outside the file";
        row("section wraps") << elf.section(1, "offset", is64 ? ~quint64(0xf) : 0xfffffff0).bytes
                             << "outside the file";
        row("section huge") << elf.section(1, "size", 1 << 20).bytes << "too large";
        row("section without bytes") << elf.section(1, "type", 8).bytes << "holds no data";
    }
}

void TestShellStandIn::refusesHostileElf()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    QByteArray section("left over");
    QString error;
    QVERIFY(!readSection(writeFile(QStringLiteral("hostile.elf"), bytes), &section, &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
    QVERIFY(section.isEmpty());
}

void TestShellStandIn::refusesEveryTruncation_data()
{
    QTest::addColumn<bool>("is64");
    QTest::newRow("ELF64") << true;
    QTest::newRow("ELF32") << false;
}

// The section table sits at the end, so every shorter file must be refused.
void TestShellStandIn::refusesEveryTruncation()
{
    QFETCH(bool, is64);
    const QByteArray whole = makeElf(is64, payload()).bytes;
    for (int length = 0; length < whole.size(); ++length) {
        QByteArray section;
        QString error;
        QVERIFY2(!readSection(
                     writeFile(QStringLiteral("cut.elf"), whole.left(length)), &section, &error),
            qPrintable(QStringLiteral("accepted at %1 bytes").arg(length)));
        QVERIFY(!error.isEmpty());
    }
}

void TestShellStandIn::readsBuiltPluginSection()
{
    QByteArray section;
    QString error;
    QVERIFY2(readSection(QStringLiteral(FAKE_PLUGIN_GOOD), &section, &error), qPrintable(error));
    QCOMPARE(section, payload());
    QVERIFY(!readSection(QStringLiteral(FAKE_PLUGIN_NOSECTION), &section, &error));
    QVERIFY(!readSection(m_dir.path(), &section, &error));
    QVERIFY2(error.contains(QStringLiteral("not a regular file")), qPrintable(error));
    QVERIFY(!readSection(m_dir.filePath(QStringLiteral("missing.so")), &section, &error));
    QVERIFY2(error.contains(QStringLiteral("cannot open")), qPrintable(error));
}

void TestShellStandIn::refusesPlugin_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("reason");

    QTest::newRow("older Qt") << FAKE_PLUGIN_WRONGVERSION << "Qt version";
    QTest::newRow("other build key") << FAKE_PLUGIN_WRONGBUILDKEY << "build key";
    QTest::newRow("other pattern") << FAKE_PLUGIN_WRONGPATTERN << "pattern";
    QTest::newRow("copies differ") << FAKE_PLUGIN_SECTIONDIFFERS << "differ";
    QTest::newRow("no section") << FAKE_PLUGIN_NOSECTION << "no .qtplugin section";
    QTest::newRow("no function") << FAKE_PLUGIN_NOFUNCTION
                                 << "no qt_plugin_query_verification_data";
    QTest::newRow("not a UtilInterface") << FAKE_PLUGIN_PLAINROOT << "does not implement";
    QTest::newRow("truncated plug-in") << "truncated"
                                       << "outside the file";
    QTest::newRow("missing file") << "missing.so"
                                  << "cannot open";
    QTest::newRow("text file") << "notes"
                               << "not an ELF file";
}

void TestShellStandIn::refusesPlugin()
{
    QFETCH(QString, plugin);
    QFETCH(QString, reason);
    QFile good(QStringLiteral(FAKE_PLUGIN_GOOD));
    QVERIFY(good.open(QIODevice::ReadOnly));
    const QByteArray goodBytes = good.readAll();
    if (plugin == QLatin1String("truncated"))
        plugin = writeFile(plugin, goodBytes.left(goodBytes.size() / 2));
    else if (plugin == QLatin1String("notes"))
        plugin = writeFile(plugin, "pattern=QT_PLUGIN_VERIFICATION_DATA\n");
    else if (!plugin.startsWith(QLatin1Char('/')))
        plugin = m_dir.filePath(plugin);

    const ShellRun run = runShell({ QStringLiteral("--plugin"), plugin }, m_dir.path());
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(QStringLiteral("refused")) && run.err.contains(reason),
        qPrintable(run.err));
    QVERIFY(!run.out.contains(QStringLiteral("loaded")));
    QVERIFY(!run.out.contains(QStringLiteral("fake:")));
}

void TestShellStandIn::acceptsDemoPlugin()
{
    const ShellRun run = runShell({ QStringLiteral("--plugin"), QStringLiteral(DEMO_PLUGIN_PATH),
                                      QStringLiteral("--quit-after"), QStringLiteral("0.2") },
        m_dir.path());
    QVERIFY(run.finished);
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    for (const char* identity : { "id:      com.corvaneinc.CommonUtil.NerioOpmPlugin",
             "name:    OpticalPowerMeter", "version: 1.0", "builder: CORVANE" })
        QVERIFY2(run.out.contains(QLatin1String(identity)), qPrintable(run.out));
    // Never started: stop refuses, terminate still runs.
    QVERIFY2(run.out.contains(QStringLiteral("stop -> false\nopmshell: terminate")),
        qPrintable(run.out));
}

void TestShellStandIn::drivesPluginAndQuitsInOrder()
{
    const QString shot = m_dir.filePath(QStringLiteral("frame.png"));
    const ShellRun run = runShell(
        { QStringLiteral("--plugin"), QStringLiteral(FAKE_PLUGIN_GOOD),
            QStringLiteral("--autostart"), QStringLiteral("--screenshot-at"),
            QStringLiteral("0.3:") + shot, QStringLiteral("--quit-after"), QStringLiteral("0.6") },
        m_dir.path());
    QVERIFY(run.finished);
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    const int start = run.out.indexOf(QStringLiteral("fake: start parent 800x480"));
    const int stop = run.out.indexOf(QStringLiteral("fake: stop"));
    const int terminate = run.out.indexOf(QStringLiteral("fake: terminate"));
    QVERIFY2(start >= 0 && start < stop && stop < terminate, qPrintable(run.out));
    QCOMPARE(run.out.count(QStringLiteral("fake: start")), 1);
    QCOMPARE(QImage(shot).size(), QSize(800, 480));
}

void TestShellStandIn::refusesBadCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no plug-in") << QStringList { QStringLiteral("--autostart") };
    QTest::newRow("quit when") << QStringList { QStringLiteral("--plugin"),
        QStringLiteral(FAKE_PLUGIN_GOOD), QStringLiteral("--quit-after"), QStringLiteral("soon") };
    QTest::newRow("negative time")
        << QStringList { QStringLiteral("--plugin"), QStringLiteral(FAKE_PLUGIN_GOOD),
               QStringLiteral("--screenshot-at"), QStringLiteral("-1:a.png") };
    QTest::newRow("shot without file") << QStringList { QStringLiteral("--plugin"),
        QStringLiteral(FAKE_PLUGIN_GOOD), QStringLiteral("--screenshot-at"), QStringLiteral("2:") };
    QTest::newRow("unknown option") << QStringList { QStringLiteral("--plugin"),
        QStringLiteral(FAKE_PLUGIN_GOOD), QStringLiteral("--fullscreen") };
}

void TestShellStandIn::refusesBadCommandLine()
{
    QFETCH(QStringList, arguments);
    const ShellRun run = runShell(arguments, m_dir.path());
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 2);
    QVERIFY(!run.out.contains(QStringLiteral("loaded")));
    QVERIFY(!run.err.isEmpty());
}

QTEST_GUILESS_MAIN(TestShellStandIn)
#include "tst_shellstandin.moc"
