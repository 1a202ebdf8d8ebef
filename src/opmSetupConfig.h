#ifndef OPMSETUPCONFIG_H
#define OPMSETUPCONFIG_H

#include <QMap>
#include <QString>

// The operator's setup as it is kept in the settings file, one text per key.
class COpmSetupConfig
{
public:
    COpmSetupConfig();
    ~COpmSetupConfig();

    void COpmSetupConfigLoad();
    void COpmSetupConfigSave();
    void debugCOpmSetupConfig();

    QString mWaveLenth;
    QString mTestMode;
    QString mUnit;
    QString mPowerLimit;
    QString mPowerLimitMin;
    QString mPowerLimitMax;
    QString mlossUnit;
    QString mlossLength;
    QString mreference850;
    QString mreference1310;
    QString mreference1490;
    QString mreference1550;
    QString mreference1625;

private:
    void readSetup(const QString& file, const QMap<QString, QString>& written);
    bool writeSetup(const QString& file) const;
};

#endif // OPMSETUPCONFIG_H
