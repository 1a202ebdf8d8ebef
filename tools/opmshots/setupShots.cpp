#include "cdialog.h"
#include "cpushbutton.h"
#include "ctabwidget.h"
#include "devicePaths.h"
#include "fixedText.h"
#include "opmMain.h"
#include "opmShowResult.h"
#include "shots.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstring>

namespace {

// The Setup tab in its tab container at the set's page size, as the main page builds it, but
// without starting a reader: the pictures show what this program writes into the record.
struct SetupPage
{
    explicit SetupPage(const QByteArray& settings)
    {
        QFile file(DevicePaths::settingFile());
        QDir().mkpath(QFileInfo(file).path());
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write("[COpmSetup]\n" + settings);
        file.close();
        tabs.resize(658, 398);
        page = new NerioOpm(&tabs);
        tabs.addTab(page, QCoreApplication::translate("COpmMainPage", "Setup"));
        tabs.addTab(new COpmShowResultPage(&tabs),
                    QCoreApplication::translate("COpmMainPage", "Result"));
        tabs.show();
    }
    // The reader shows value at wavelength, and the page polls it twice.
    void show(const char* wavelength, const char* value)
    {
        OpmShareRecord* record = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(Getkey()));
        if (!isShareMemAttached(record))
            return;
        FixedText::copy(record->wavelenth, wavelength);
        FixedText::copy(record->unit, "dBm");
        FixedText::copy(record->value, value);
        record->flag = OpmFlagReading;
        record->needSave = 0;
        QMetaObject::invokeMethod(page, "onTimer");
        QMetaObject::invokeMethod(page, "onTimer");
        QApplication::processEvents();
    }
    CPushButton* button(const QString& text) const
    {
        foreach (CPushButton* b, page->findChildren<CPushButton*>())
            if (b->text() == text)
                return b;
        return 0;
    }

    CTabWidget tabs;
    NerioOpm* page;
};

} // namespace

// The Setup tab in Power Meter mode with limits and a saved reading, the reference dialog, and
// Loss Meter mode in dB/km. They go through the demo root's settings file, which is put back.
int shootSetup(const ShotOptions& options)
{
    // The record's key follows the working folder: the demo root's own.
    QDir().mkpath(deviceRoot());
    QDir::setCurrent(deviceRoot());
    QFile settingFile(DevicePaths::settingFile());
    const bool hadSettings = settingFile.open(QIODevice::ReadOnly);
    const QByteArray kept = settingFile.readAll();
    settingFile.close();
    int failures = 0;
    const QByteArray limits = "PowerLimit=enable\nPowerLimitMinimum=-20\nPowerLimitMaximum=-5\n";

    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    Result saved;
    std::memset(&saved, 0, sizeof saved);
    FixedText::copy(saved.testMode, "Power Meter");
    FixedText::copy(saved.waveLenth, "1310");
    FixedText::copy(saved.value, "-12.340 dBm");
    FixedText::copy(saved.pass, "YES");
    saved.isLimit = true;
    store->addResultItem(saved);
    {
        SetupPage setup(limits + "Wavelength=1310\nReference1310=-2.9\n");
        setup.show("1310", "-12.34");
        failures += !saveShot(setup.tabs, options, "setup-power-meter.png");
    }
    {
        SetupPage setup(limits + "Wavelength=1310\nTestMode=LossMeter\nReference1310=-2.9\n");
        setup.show("1310", "-3.05");
        if (CPushButton* reference = setup.button(QObject::tr("Reference")))
            reference->click();
        CDialog* dialog = setup.page->findChild<CDialog*>();
        failures += !dialog || !saveShot(*dialog, options, "setup-reference-dialog.png");
    }
    {
        SetupPage setup(limits
                        + "Wavelength=1310\nTestMode=LossMeter\nLossUnit=km\nLossLength=2.5\n"
                          "Reference1310=-3.05\n");
        setup.show("1310", "-14.52");
        failures += !saveShot(setup.tabs, options, "setup-loss-meter.png");
    }
    store->clearAllresultItem();
    if (hadSettings && settingFile.open(QIODevice::WriteOnly | QIODevice::Truncate))
        settingFile.write(kept);
    else if (!hadSettings)
        QFile::remove(DevicePaths::settingFile());
    return failures == 0 ? 0 : 1;
}
