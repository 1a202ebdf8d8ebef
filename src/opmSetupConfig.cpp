#include "opmSetupConfig.h"

#include "devicePaths.h"

#include <QFile>
#include <QFileInfo>
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

// INI reads an unquoted value with commas as a list and "@Type(...)" as that type; the setup
// only knows texts. A list is joined back the way it is written, anything without a text
// form falls back to the key's default.
QString settingText(const QVariant& value, const char* defaultValue)
{
    if (value.type() == QVariant::StringList)
        return value.toStringList().join(QString::fromLatin1(", "));
    if (!value.isValid() || !value.canConvert<QString>())
        return QString::fromLatin1(defaultValue);
    return value.toString();
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

} // namespace

COpmSetupConfig::COpmSetupConfig()
{
    const QString dir = DevicePaths::settingDir();
    if (!dirExists(dir)) {
        DevicePaths::runCommand(DevicePaths::makeSettingDirCommand());
        if (!QFileInfo(dir).isDir())
            printf("COpmSetupConfig cannot create %s \n", QFile::encodeName(dir).constData());
    }
    COpmSetupConfigLoad();
}

COpmSetupConfig::~COpmSetupConfig() { }

void COpmSetupConfig::COpmSetupConfigLoad()
{
    QSettings settings(DevicePaths::settingFile(), QSettings::IniFormat);
    settings.beginGroup(QLatin1String(kGroup));
    for (size_t i = 0; i < kSetupKeyCount; ++i) {
        const SetupKey& key = kSetupKeys[i];
        const QVariant value = settings.value(QLatin1String(key.key), QLatin1String(key.defaultValue));
        this->*key.field = settingText(value, key.defaultValue);
    }
    settings.endGroup();
    // Written straight back, so that the file holds every key after the first start.
    COpmSetupConfigSave();
    debugCOpmSetupConfig();
}

void COpmSetupConfig::COpmSetupConfigSave()
{
    printf("COpmSetupConfigSave \n");
    const QString file = DevicePaths::settingFile();
    QSettings settings(file, QSettings::IniFormat);
    settings.beginGroup(QLatin1String(kGroup));
    for (size_t i = 0; i < kSetupKeyCount; ++i)
        settings.setValue(QLatin1String(kSetupKeys[i].key), this->*kSetupKeys[i].field);
    settings.endGroup();
    settings.sync();
    // A format error only says that the old contents were garbled; they are replaced anyway.
    noteWriteResult(file, settings.status() != QSettings::AccessError);
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
