#include "ccombobox.h"
#include "clabel.h"
#include "cmessagebox.h"
#include "cpushbutton.h"
#include "fixedText.h"
#include "offsetBar.h"
#include "opm.h"
#include "opmDataEngine.h"
#include "opmReading.h"
#include "opmWidgets.h"

#include <QPointer>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The Setup tab's tick: the reading of the shared record on the screen and in m_result, the
// last-saved summary, and saving a reading.

namespace {

// Sets a widget's text only when it differs from what it was last given (shown).
template <typename Widget>
void showLatin1(Widget* widget, QString& shown, const char* text)
{
    const QLatin1String latin1(text);
    if (shown != latin1) {
        shown = QString(latin1);
        widget->setText(shown);
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Reading display

void NerioOpm::onTimer()
{
    static int s_nTicks = 0;

    setHoldInfo();
    if (m_bHold || !isShareMemReady())
        return;
    printf("-----------onTimer-------%d---------\n", s_nTicks++);

    std::memcpy(&Opm, m_addr, sizeof Opm);
    OpmPage::terminateTexts(Opm);

    if (Opm.flag == OpmFlagNoReading) {
        showReadingColour(Qt::red);
        return;
    }
    if (Opm.flag == OpmFlagNotConnected) {
        showNotConnected();
        return;
    }

    if (std::strcmp(Opm.unit, "dB") == 0) {
        // A relative level comes without its sign; a text that would not fit loses its end.
        char signedValue[sizeof Opm.value] = "-";
        FixedText::copy(signedValue + 1, sizeof signedValue - 1, Opm.value);
        FixedText::copy(Opm.value, signedValue);
    }
    deleteSpace(Opm.value);

    // Compared in the limits' own precision, so that a reading equal to a typed limit passes.
    const float reading = opmReadingValue(Opm.value);
    m_bPass = m_fPowerMin <= reading && reading <= m_fPowerMax;
    if (m_bPowerLimits)
        m_qColorTextColor = m_bPass ? Qt::green : Qt::red;
    else
        m_qColorTextColor = Qt::black;

    showResult();

    if (Opm.needSave > 0) {
        m_addr->needSave = 0;
        saveResult();
    }
}

void NerioOpm::showReadingColour(const QColor& colour)
{
    if (m_qColorShown != colour) {
        m_qColorShown = colour;
        m_pOpmCurValue->setTextColor(colour);
    }
}

void NerioOpm::showReading(const QColor& colour, const char* text)
{
    showReadingColour(colour);
    showLatin1(m_pOpmCurValue, m_strValueShown, text);
}

void NerioOpm::showNotConnected()
{
    showReadingColour(Qt::red);
    m_strValueShown = QObject::tr("OPM Not Connected!");
    m_pOpmCurValue->setText(m_strValueShown);
}

void NerioOpm::showResult()
{
    char text[1024];
    std::memset(text, 0, sizeof text);

    const bool noLight = std::strcmp(Opm.value, "---.--") == 0;
    if (!noLight && Opm.value[0] != '\0' && m_sOpmRef.flag == 0) {
        FixedText::copyField(m_sOpmRef.value, Opm.value);
        FixedText::copyField(m_sOpmRef.wavelenth, Opm.wavelenth);
        FixedText::copyField(m_sOpmRef.unit, Opm.unit);
    }

    const OpmDisplaySettings settings = { m_eTestMode, m_eRusultUnit, m_eLossLengthType, m_fLength,
                                          m_aWaveLengthRef[m_eWaveLength] };
    if (!opmFormatReading(settings, Opm.value, Opm.unit, text, sizeof text, &m_result))
        return;
    if (!noLight && m_eTestMode == PowerMeter && m_eRusultUnit == dB)
        showLatin1(m_pdBm, m_strdBmShown, m_result.limitsUnit);
    // The bar places the reading as the reader sent it, whatever the mode and unit.
    const double reading = atof(Opm.value);

    showReading(m_qColorTextColor, text);

    if (m_bPowerLimits)
        m_pOffsetBarResult->setRangedOffset(double(m_fPowerMin), double(m_fPowerMax), reading);
    else
        m_pOffsetBarResult->setRangedOffset(-60.0, 10.0, reading);

    printf("Opm.wavelenth (%s) \n", Opm.wavelenth);
    const int reported = OpmPage::waveLengthIndex(Opm.wavelenth);
    if (reported >= 0) {
        m_pWaveLength->setCurrentIndex(reported);
        m_eWaveLength = WaveLengthType(reported);
    }

    fillResult(text);
    updateResultSummary();
}

void NerioOpm::fillResult(const char* valueText)
{
    FixedText::copy(m_result.testMode, m_eTestMode == PowerMeter ? "Power Meter" : "Loss Meter");
    FixedText::copyField(m_result.ref, m_aWaveLengthRef[m_eWaveLength]);
    FixedText::copyField(m_result.waveLenth, Opm.wavelenth);
    fillResultLimits();
    FixedText::copyMeasurement(m_result.value, valueText);
    FixedText::copy(m_result.pass, m_bPass ? "YES" : "NO");
}

// Formatting floats is the dearest part of a tick's own work, and the limits seldom change:
// they are formatted again only when they differ bit for bit (-0 prints differently from 0).
void NerioOpm::fillResultLimits()
{
    const float limits[2] = { m_fPowerMin, m_fPowerMax };
    if (m_bResultLimitsSet && std::memcmp(limits, m_aResultLimits, sizeof limits) == 0)
        return;
    char number[512];
    snprintf(number, sizeof number, "%.6f", double(m_fPowerMin));
    FixedText::copy(m_result.minimum, number);
    snprintf(number, sizeof number, "%.6f", double(m_fPowerMax));
    FixedText::copy(m_result.maximum, number);
    std::memcpy(m_aResultLimits, limits, sizeof limits);
    m_bResultLimitsSet = true;
}

void NerioOpm::setHoldInfo()
{
    QString title;
    if (m_eTestMode == PowerMeter)
        title = m_bHold ? QObject::tr("Optical Power       \t      Hold")
                        : QObject::tr("Optical Power");
    else if (m_eTestMode == LossMeter)
        title = m_bHold ? QObject::tr("Loss Meter   Hold") : QObject::tr("Loss Meter");
    m_pOpmInfoTitle->setText(title);
}

void NerioOpm::updateResultSummary()
{
    const Result last = m_opmData->getLastResultItem();
    char line[512];
    const int count = m_opmData->getResultItemCount();
    if (count > 0) {
        int n = snprintf(line, sizeof line,
                         "Last Saved - Loc#%d Wave length:%.*s nm , Mode:%.*s , Value:%.*s", count,
                         int(FixedText::length(last.waveLenth)), last.waveLenth,
                         int(FixedText::length(last.testMode)), last.testMode,
                         int(FixedText::length(last.value)), last.value);
        if (last.isLimit && n > 0 && size_t(n) < sizeof line)
            snprintf(line + n, sizeof line - size_t(n), " , Pass:%.*s",
                     int(FixedText::length(last.pass)), last.pass);
    } else {
        FixedText::copy(line, sizeof line, " ");
    }
    showLatin1(m_pSummary, m_strSummaryShown, line);
}

void NerioOpm::deleteSpace(char* ptr)
{
    char kept[sizeof Opm.value] = {};
    size_t n = 0;
    for (size_t i = 0; i < sizeof kept - 1 && ptr[i] != '\0'; ++i) {
        if (ptr[i] != ' ')
            kept[n++] = ptr[i];
    }
    std::memcpy(ptr, kept, n + 1);
}

// ---------------------------------------------------------------------------------------------
// Saving a reading

void NerioOpm::saveResult()
{
    // Without a record there is no valid reading to save.
    const int flag = isShareMemReady() ? m_addr->flag : int(OpmFlagNotConnected);
    printf("saveResul tm_addr->flag(%d) \n", flag);
    if (m_opmData->getResultItemCount() > CBrovaOpmDataEngine::kMaxResults - 1) {
        // On the heap: the host may destroy the page, and the box with it, inside the box's loop.
        QPointer<CMessageBox> box = new CMessageBox(0);
        box->setTextColor(Qt::blue);
        box->setTextAlignment(Qt::AlignCenter);
        box->setFixedSize(500, 300);
        box->setTitleBackgroundColor(Qt::green);
        box->setButtonText(QMessageBox::Ok, QObject::tr("OK"));
        box->information(this, "Warning", "Exceeds max allowed results!", QMessageBox::Ok);
        delete box.data();
        return;
    }
    if (flag == OpmFlagReading)
        m_opmData->addResultItem(m_result);
}
