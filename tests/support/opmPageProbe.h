#ifndef OPMPAGEPROBE_H
#define OPMPAGEPROBE_H

// Access to the Setup tab's private state for the page suites, and the few helpers they share.

#include "ccheckbox.h"
#include "ccombobox.h"
#include "cdialog.h"
#include "clabel.h"
#include "clineedit.h"
#include "cpushbutton.h"
#include "devicePaths.h"
#include "fixedText.h"
#include "offsetBar.h"
#include "opm.h"
#include "opmMain.h"
#include "testSupport.h"

#include <QCoreApplication>
#include <QFile>
#include <QMap>
#include <QMetaObject>
#include <QTimer>

#include <memory>

struct OpmPageProbe
{
#define OPM_PROBE_FIELD(name) \
    static auto& name(NerioOpm* page) { return page->name; }

    OPM_PROBE_FIELD(m_pWaveLength)
    OPM_PROBE_FIELD(m_pTestMode)
    OPM_PROBE_FIELD(m_pSummary)
    OPM_PROBE_FIELD(m_pHold)
    OPM_PROBE_FIELD(m_pSave)
    OPM_PROBE_FIELD(m_pReference)
    OPM_PROBE_FIELD(m_pdBm)
    OPM_PROBE_FIELD(m_pmW)
    OPM_PROBE_FIELD(m_puW)
    OPM_PROBE_FIELD(m_pOpmInfoTitle)
    OPM_PROBE_FIELD(m_pOpmRefLabel)
    OPM_PROBE_FIELD(m_pOpmCurValue)
    OPM_PROBE_FIELD(m_pLimits)
    OPM_PROBE_FIELD(m_pMinimum)
    OPM_PROBE_FIELD(m_pMaximum)
    OPM_PROBE_FIELD(m_pLossMeterUnit)
    OPM_PROBE_FIELD(m_pLabelLossLength)
    OPM_PROBE_FIELD(m_pLossLength)
    OPM_PROBE_FIELD(m_pReferenceDialog)
    OPM_PROBE_FIELD(m_pReferenceSet)
    OPM_PROBE_FIELD(m_pReferenceCancel)
    OPM_PROBE_FIELD(m_pRefLabel2)
    OPM_PROBE_FIELD(m_pRefLabel3)
    OPM_PROBE_FIELD(m_pTimer)
    OPM_PROBE_FIELD(m_addr)
    OPM_PROBE_FIELD(m_sOpmRef)
    OPM_PROBE_FIELD(m_bHold)
    OPM_PROBE_FIELD(m_bPowerLimits)
    OPM_PROBE_FIELD(m_eTestMode)
    OPM_PROBE_FIELD(m_eRusultUnit)
    OPM_PROBE_FIELD(m_eLossLengthType)
    OPM_PROBE_FIELD(m_aWaveLengthRef)
    OPM_PROBE_FIELD(m_eWaveLength)
    OPM_PROBE_FIELD(m_fLength)
    OPM_PROBE_FIELD(m_fPowerMin)
    OPM_PROBE_FIELD(m_fPowerMax)
    OPM_PROBE_FIELD(m_qColorTextColor)
    OPM_PROBE_FIELD(m_result)
    OPM_PROBE_FIELD(m_bPass)
    OPM_PROBE_FIELD(m_pOffsetBarResult)
    OPM_PROBE_FIELD(m_config)
#undef OPM_PROBE_FIELD

    static NerioOpm* setupPage(COpmMainPage* main) { return main->m_pTableOpmSetup; }

    // One poll of the reader, as the page's timer would deliver it.
    static void tick(NerioOpm* page) { QMetaObject::invokeMethod(page, "onTimer"); }

    // Operator actions: only these signals reach the page's slots.
    static void choose(CComboBox* combo, int index)
    {
        combo->setCurrentIndex(index);
        emit combo->activated(index);
    }
    static void enter(CLineEdit* edit, const QString& text)
    {
        edit->setText(text);
        emit edit->textEdited(text);
    }
};

// A text field of a record, read no further than its width.
template <size_t N>
inline QString fieldText(const char (&field)[N])
{
    return QString::fromLatin1(field, int(FixedText::length(field)));
}

// The settings file's [COpmSetup] group as it is on disk (QSettings caches in-process, so the
// file is parsed here).
inline QMap<QString, QString> storedSetup()
{
    QMap<QString, QString> keys;
    QFile file(DevicePaths::settingFile());
    if (!file.open(QIODevice::ReadOnly))
        return keys;
    bool inGroup = false;
    for (const QByteArray& raw : file.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inGroup = line == QLatin1String("[COpmSetup]");
            continue;
        }
        const int eq = line.indexOf(QLatin1Char('='));
        if (!inGroup || eq <= 0)
            continue;
        QString value = line.mid(eq + 1).trimmed();
        if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
            value = value.mid(1, value.size() - 2);
        keys.insert(line.left(eq).trimmed(), value);
    }
    return keys;
}

inline QByteArray setupText(const QMap<QString, QString>& keys)
{
    QByteArray text = "[COpmSetup]\n";
    for (auto it = keys.cbegin(); it != keys.cend(); ++it)
        text += it.key().toUtf8() + '=' + it.value().toUtf8() + '\n';
    return text;
}

// The order every page test builds in: its own device root, the reader's side, then the page
// (with an empty result store and, when given, a settings file written beforehand).
struct PageFixture
{
    explicit PageFixture(const QByteArray& settings = QByteArray(), bool build = true)
    {
        CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
        if (!settings.isNull())
            root.writeFile(QStringLiteral("/home/Setting/opmSetup.conf"), settings);
        if (build)
            buildPage();
    }
    // A new page on the same root, as after a restart.
    void buildPage()
    {
        page.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        page.reset(new NerioOpm);
    }
    ~PageFixture()
    {
        page.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    OpmShareRecord* record() { return reader.record(); }
    NerioOpm* operator->() const { return page.get(); }
    NerioOpm* get() const { return page.get(); }

    TestDeviceRoot root;
    RecordWriter reader;
    std::unique_ptr<NerioOpm> page;
};

#endif // OPMPAGEPROBE_H
