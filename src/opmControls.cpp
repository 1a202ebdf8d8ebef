#include "ccheckbox.h"
#include "ccombobox.h"
#include "clabel.h"
#include "clineedit.h"
#include "cmessagebox.h"
#include "cpushbutton.h"
#include "fixedText.h"
#include "offsetBar.h"
#include "opm.h"
#include "opmWidgets.h"

#include <QPointer>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The Setup tab's controls: each change takes effect at once and is saved in the stored setup.

using OpmPage::formatG6;
using OpmPage::textToFloat;

void NerioOpm::applyTestModeLayout(TestModeType mode)
{
    const bool power = mode == PowerMeter;
    if (power) {
        m_pReference->setVisible(false);
        m_pdBm->setVisible(true);
        m_pmW->setVisible(true);
        m_puW->setVisible(true);
    } else {
        m_pdBm->setVisible(false);
        m_pmW->setVisible(false);
        m_puW->setVisible(false);
        m_pReference->setVisible(true);
    }
    m_pLossMeterUnit->setVisible(!power);
    m_pLossLength->setVisible(!power);
    m_pLimits->setFixedWidth(power ? 190 : 120);
    m_pLimits->setText(power ? QObject::tr("Power Limits (dBm)") : QObject::tr("Loss Limits"));
    m_pOpmRefLabel->setVisible(!power);
    m_pLabelLossLength->setVisible(!power);
}

void NerioOpm::showReferenceLabel(int waveLength)
{
    char tmpCaption[64];
    std::memset(tmpCaption, 0, sizeof tmpCaption);
    snprintf(tmpCaption, sizeof tmpCaption, "Ref.: %.*s dBm",
             int(FixedText::length(m_aWaveLengthRef[waveLength])), m_aWaveLengthRef[waveLength]);
    m_pOpmRefLabel->setText(QString::fromLatin1(tmpCaption));
}

void NerioOpm::showInputError(const QString& text)
{
    if (!m_pMsgbox)
        m_pMsgbox = new CMessageBox(this);
    m_pMsgbox->setButtonText(QMessageBox::Ok, QObject::tr("OK"));
    m_pMsgbox->information(this, QObject::tr("Error"), text, QMessageBox::Ok);
}

void NerioOpm::onParmComboxChanged(int index)
{
    if (qobject_cast<CComboBox*>(sender()) == m_pTestMode) {
        if (index == PowerMeter) {
            m_eTestMode = PowerMeter;
            m_config.mTestMode = "PowerMeter";
            applyTestModeLayout(PowerMeter);
        } else if (index == LossMeter) {
            m_eTestMode = LossMeter;
            m_config.mTestMode = "LossMeter";
            applyTestModeLayout(LossMeter);
        }
    }
    m_config.COpmSetupConfigSave();
}

void NerioOpm::onComboxWavelenChanged(int index)
{
    if (index < 0 || index >= kWaveLengthCount)
        return;
    setShareMemWaveLen(WaveLengthType(index));
    m_config.mWaveLenth = OpmPage::kWaveLengthTexts[index];
    if (m_eTestMode == LossMeter)
        showReferenceLabel(index);
    m_config.COpmSetupConfigSave();
    printf("onComboxWavelenChanged (%d)\n", index);
}

void NerioOpm::onComboxChanged(int index)
{
    printf("onComboxChanged  index :%d \n", index);
    if (qobject_cast<CComboBox*>(sender()) != m_pLossMeterUnit)
        return;
    switch (index) {
    case LossLim_dB:
        m_eLossLengthType = LossLim_dB;
        setEnable(m_pLossLength, false);
        m_pLossLength->setText(tr(""));
        m_pLabelLossLength->setTextColor(Qt::gray);
        m_config.mlossUnit = "db";
        break;
    case LossLim_dBkm:
    case LossLim_dBmi:
        m_eLossLengthType = LossLengthType(index);
        setEnable(m_pLossLength, true);
        m_pLossLength->setText(formatG6(m_fLength));
        m_pLabelLossLength->setTextColor(Qt::white);
        m_config.mlossUnit = index == LossLim_dBkm ? "km" : "mi";
        break;
    default:
        return;
    }
    m_config.COpmSetupConfigSave();
}

void NerioOpm::onParmLineEditChanged()
{
    CLineEdit* edit = qobject_cast<CLineEdit*>(sender());
    // An error box runs its own loop, in which the host may destroy the page.
    QPointer<NerioOpm> alive = this;
    if (edit && edit == m_pLossLength) {
        bool l_eLengthInvalid = false;
        m_fLength = textToFloat(m_pLossLength->text());
        if (!OpmPage::isValidLength(m_fLength)) {
            l_eLengthInvalid = true;
            m_pLossLength->setText(tr("1"));
            m_fLength = 1.0f;
        }
        printf("onParmLineEditChanged      m_fLength: %f \n", double(m_fLength));
        if (l_eLengthInvalid)
            showInputError(
                QObject::tr("The length must be greater than zero! Please input again."));
    } else if (edit && (edit == m_pMinimum || edit == m_pMaximum)) {
        setPowerLimits(edit);
        if (!alive)
            return;
        m_pOffsetBarResult->setRangedOffset(double(m_fPowerMin), double(m_fPowerMax),
                                            atof(Opm.value));
    }
    if (!alive)
        return;
    m_config.mlossLength = formatG6(m_fLength);
    m_config.mPowerLimitMin = formatG6(m_fPowerMin);
    m_config.mPowerLimitMax = formatG6(m_fPowerMax);
    m_config.COpmSetupConfigSave();
}

void NerioOpm::setPowerLimits(CLineEdit* pParmLineEdit)
{
    bool bShowErrWnd = false;
    const float value = textToFloat(pParmLineEdit->text());
    const bool inRange = value >= -60.0f && value <= 10.0f;
    if (pParmLineEdit == m_pMaximum) {
        if (inRange && value >= m_fPowerMin) {
            m_fPowerMax = value;
        } else {
            m_pMaximum->setText(formatG6(m_fPowerMax));
            bShowErrWnd = true;
        }
    } else if (pParmLineEdit == m_pMinimum) {
        if (inRange && value <= m_fPowerMax) {
            m_fPowerMin = value;
        } else {
            m_pMinimum->setText(formatG6(m_fPowerMin));
            bShowErrWnd = true;
        }
    }
    if (bShowErrWnd)
        showInputError(
            QObject::tr("Minimum must be less or equal to Maximum! Please input again."));
}

void NerioOpm::onStateChanged() { setEditSate(); }

void NerioOpm::setEditSate()
{
    if (m_pLimits->isChecked()) {
        m_bPowerLimits = true;
        m_config.mPowerLimit = "enable";
        m_fPowerMax = textToFloat(m_pMaximum->text());
        m_fPowerMin = textToFloat(m_pMinimum->text());
        m_pOffsetBarResult->setRangedOffset(double(m_fPowerMin), double(m_fPowerMax),
                                            atof(Opm.value));
        m_result.isLimit = true;
        setEnable(m_pMaximum, true);
        setEnable(m_pMinimum, true);
        if (m_pLossMeterUnit->currentIndex() == LossLim_dB) {
            setEnable(m_pLossLength, false);
            m_pLossLength->setText(tr(""));
        } else {
            setEnable(m_pLossLength, true);
            m_pLossLength->setText(formatG6(m_fLength));
        }
        m_pLossMeterUnit->setEnabled(true);
    } else {
        m_bPowerLimits = false;
        m_config.mPowerLimit = "disable";
        m_result.isLimit = false;
        m_pOffsetBarResult->setRangedOffset(-60.0, 10.0, atof(Opm.value));
        setEnable(m_pMaximum, false);
        setEnable(m_pMinimum, false);
        setEnable(m_pLossLength, false);
        m_pLossMeterUnit->setEnabled(false);
    }
    m_config.COpmSetupConfigSave();
}

void NerioOpm::setEnable(CLineEdit* pWidget, bool flag) { pWidget->setEnabled(flag); }

void NerioOpm::onBtnChanged()
{
    puts("onBtnChanged ");
    CPushButton* button = qobject_cast<CPushButton*>(sender());
    if (!button)
        return;
    if (button == m_pSave) {
        saveResult();
    } else if (button == m_pReference) {
        startReference();
    } else if (button == m_pHold) {
        m_bHold = !m_bHold;
    } else if (button == m_pdBm || button == m_pmW || button == m_puW) {
        m_eRusultUnit = button == m_pmW ? mW : button == m_puW ? uW : dB;
        m_pLimits->setText(OpmPage::powerLimitsCaption(m_eRusultUnit));
        m_config.mUnit = OpmPage::kUnitTexts[m_eRusultUnit];
        m_config.COpmSetupConfigSave();
    }
}
