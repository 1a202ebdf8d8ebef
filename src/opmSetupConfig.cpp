#include "opmSetupConfig.h"

#include "devicePaths.h"
#include "fileReplace.h"
#include "readerProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QSet>
#include <QSettings>
#include <QStringList>
#include <QVariant>

#include <cstdio>

#include <unistd.h>

namespace {

const char kGroup[] = "COpmSetup";

struct SetupKey
{
    QString COpmSetupConfig::*field;
    const char* key;
    const char* defaultValue;
};

// The file's keys in the order they are read and written.
const SetupKey kSetupKeys[] = {
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
const size_t kSetupKeyCount = sizeof kSetupKeys / sizeof kSetupKeys[0];

// Files whose last write failed and has been reported, so that a setup that cannot be kept
// is traced once and not on every change.
QSet<QString>& unwritableFiles()
{
    static QSet<QString> files;
    return files;
}

// The value of each key of the group as it is written on its line, trimmed; a later line
// wins, as it does for QSettings. Read as Latin-1, as QSettings reads an INI file.
QMap<QString, QString> writtenValues(const QString& file)
{
    QMap<QString, QString> values;
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return values;
    const QList<QByteArray> lines = in.readAll().split('\n');
    bool inGroup = false;
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = QString::fromLatin1(lines.at(i)).trimmed();
        const int eq = line.indexOf(QLatin1Char('='));
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']')))
            inGroup = line.mid(1, line.size() - 2).trimmed() == QLatin1String(kGroup);
        else if (inGroup && eq > 0)
            values.insert(line.left(eq).trimmed(), line.mid(eq + 1).trimmed());
    }
    return values;
}

// Whether a value is written the way a save writes a text: quoted as a whole or not at all,
// every other quote escaped, no comma or semicolon outside the quotes. QSettings reads such a
// value back as the text that was saved. Any other value was written by hand, and QSettings
// would read it as a list, a comment, a typed value or a text running into the next lines.
bool isSavedForm(const QString& value)
{
    bool inQuotes = false;
    int quotes = 0;
    for (int i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c == QLatin1Char('\\')) {
            ++i;
        } else if (c == QLatin1Char('"')) {
            inQuotes = !inQuotes;
            ++quotes;
            const int at = quotes == 1 ? 0 : value.size() - 1;
            if (quotes > 2 || i != at)
                return false;
        } else if (!inQuotes && (c == QLatin1Char(',') || c == QLatin1Char(';'))) {
            return false;
        }
    }
    return !inQuotes;
}

// The setup only knows texts, and keeps them as they were written: a saved text as QSettings
// reads it back, a value written by hand ("1,5", "@Invalid()", a stray quote) as it stands.
QString settingText(const QVariant& value, const QMap<QString, QString>& written, const char* key,
                    const char* defaultValue)
{
    const QMap<QString, QString>::const_iterator line = written.find(QLatin1String(key));
    const bool isText = value.type() == QVariant::String;
    if (line != written.end() && !(isText && isSavedForm(line.value())))
        return line.value();
    return isText ? value.toString() : QString::fromLatin1(defaultValue);
}

void noteWriteResult(const QString& file, bool written)
{
    if (written) {
        unwritableFiles().remove(file);
        return;
    }
    if (unwritableFiles().contains(file))
        return;
    unwritableFiles().insert(file);
    printf("COpmSetupConfig cannot write %s \n", QFile::encodeName(file).constData());
}

bool dirExists(const QString& dir) { return access(QFile::encodeName(dir).constData(), F_OK) == 0; }

// QSettings never opens the settings file by its own name: it keeps what it read of a file by
// name for the whole process, and would take a file that a save renamed into place for the one
// it read before. It works on a copy under a name used once.
const char kCopyInfix[] = ".new-";

QString copyName(const QString& file)
{
    static unsigned serial = 0;
    return file + QLatin1String(kCopyInfix) + QString::number(getpid()) + QLatin1Char('-')
        + QString::number(++serial);
}

// A copy left by a crash is never read; the next start takes it away.
void removeLeftCopies(const QString& file)
{
    const QFileInfo info(file);
    QDir dir = info.dir();
    const QStringList left =
        dir.entryList(QStringList(info.fileName() + QLatin1String(kCopyInfix) + QLatin1Char('*')),
                      QDir::Files | QDir::Hidden);
    for (int i = 0; i < left.size(); ++i)
        dir.remove(left.at(i));
}

// The file's bytes under `copy`; a file that is missing or cannot be read gives an empty copy.
bool copyFile(const QString& file, const QString& copy)
{
    QFile in(file);
    const QByteArray bytes = in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    QFile out(copy);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    out.write(bytes);
    out.close();
    return out.error() == QFile::NoError;
}

} // namespace

COpmSetupConfig::COpmSetupConfig()
{
    const QString dir = DevicePaths::settingDir();
    if (!dirExists(dir)) {
        ReaderProcess::runCommand(DevicePaths::makeSettingDirCommand());
        if (!QFileInfo(dir).isDir())
            printf("COpmSetupConfig cannot create %s \n", QFile::encodeName(dir).constData());
    }
    removeLeftCopies(DevicePaths::settingFile());
    COpmSetupConfigLoad();
}

COpmSetupConfig::~COpmSetupConfig() { }

void COpmSetupConfig::COpmSetupConfigLoad()
{
    const QString file = DevicePaths::settingFile();
    const QMap<QString, QString> written = writtenValues(file);
    // Where no copy can be made (a folder that cannot be written), the file is read as it is:
    // nothing can be renamed over it then.
    const QString copy = copyName(file);
    const bool copied = copyFile(file, copy);
    readSetup(copied ? copy : file, written);
    if (copied)
        QFile::remove(copy);
    // Written straight back, so that the file holds every key after the first start.
    COpmSetupConfigSave();
    debugCOpmSetupConfig();
}

void COpmSetupConfig::COpmSetupConfigSave()
{
    printf("COpmSetupConfigSave \n");
    const QString file = DevicePaths::settingFile();
    // The new setup is written into a copy of the file, which then takes the file's place: a
    // crash at any moment leaves the whole old setup or the whole new one.
    const QString copy = copyName(file);
    // A folder taken away while the page runs is made again, as QSettings makes it for a file.
    QDir().mkpath(QFileInfo(file).path());
    const bool written = copyFile(file, copy) && writeSetup(copy)
        && FileReplace::commit(QFile::encodeName(copy), QFile::encodeName(file));
    if (!written)
        QFile::remove(copy);
    noteWriteResult(file, written);
}

void COpmSetupConfig::readSetup(const QString& file, const QMap<QString, QString>& written)
{
    QSettings settings(file, QSettings::IniFormat);
    settings.beginGroup(QLatin1String(kGroup));
    for (size_t i = 0; i < kSetupKeyCount; ++i) {
        const SetupKey& key = kSetupKeys[i];
        const QVariant value = settings.value(QLatin1String(key.key));
        this->*key.field = settingText(value, written, key.key, key.defaultValue);
    }
    settings.endGroup();
}

bool COpmSetupConfig::writeSetup(const QString& file) const
{
    QSettings settings(file, QSettings::IniFormat);
    settings.beginGroup(QLatin1String(kGroup));
    for (size_t i = 0; i < kSetupKeyCount; ++i)
        settings.setValue(QLatin1String(kSetupKeys[i].key), this->*kSetupKeys[i].field);
    settings.endGroup();
    settings.sync();
    // A format error only says that the old contents were garbled; they are replaced anyway.
    return settings.status() != QSettings::AccessError;
}

void COpmSetupConfig::debugCOpmSetupConfig()
{
    printf("mWaveLenth %s \n", mWaveLenth.toLatin1().constData());
    printf("mTestMode %s \n", mTestMode.toLatin1().constData());
    printf("mUnit %s \n", mUnit.toLatin1().constData());
    printf("mPowerLimit %s \n", mPowerLimit.toLatin1().constData());
    printf("mPowerLimitMin %s \n", mPowerLimitMin.toLatin1().constData());
    printf("mPowerLimitMax %s \n", mPowerLimitMax.toLatin1().constData());
    printf("mlossLength %s \n", mlossLength.toLatin1().constData());
    printf("mreference850 %s \n", mreference850.toLatin1().constData());
    printf("mreference1310 %s \n", mreference1310.toLatin1().constData());
    printf("mreference1490 %s \n", mreference1490.toLatin1().constData());
    printf("mreference1550 %s \n", mreference1550.toLatin1().constData());
    printf("mreference1625 %s \n", mreference1625.toLatin1().constData());
}
