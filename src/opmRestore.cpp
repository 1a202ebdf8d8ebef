#include "ccheckbox.h"
#include "ccombobox.h"
#include "clabel.h"
#include "clineedit.h"
#include "fixedText.h"
#include "opm.h"
#include "opmWidgets.h"

#include <cstdio>

// Restoring the stored setup at construction: the fields and the controls follow the settings
// file, and the reader is told the stored wavelength.

void NerioOpm::loadConfig()
{
    loadReferences();

    m_pLimits->setChecked(m_config.mPowerLimit == "enable");
    m_pMinimum->setText(m_config.mPowerLimitMin);
    m_pMaximum->setText(m_config.mPowerLimitMax);

    restoreWaveLength();
    restoreLossUnit();
    printf("m_addr->wavelenthTarget %d \n", isShareMemReady() ? m_addr->wavelenthTarget : -1);
    restoreTestMode();
    restoreLength();
    restoreUnit();

    setEditSate();
}

void NerioOpm::loadReferences()
{
    const QString references[kWaveLengthCount] = { m_config.mreference850, m_config.mreference1310,
                                                   m_config.mreference1490, m_config.mreference1550,
                                                   m_config.mreference1625 };
    for (int i = 0; i < kWaveLengthCount; ++i)
        FixedText::copy(m_aWaveLengthRef[i], references[i].toLatin1().constData());
}

void NerioOpm::restoreWaveLength()
{
    const int wave = OpmPage::waveLengthIndex(m_config.mWaveLenth.toLatin1().constData());
    if (wave < 0)
        return;
    printf("set wave length %s \n", OpmPage::kWaveLengthTexts[wave]);
    setShareMemWaveLen(WaveLengthType(wave));
    m_pWaveLength->setCurrentIndex(wave);
    showReferenceLabel(wave);
}

void NerioOpm::restoreLossUnit()
{
    if (m_config.mlossUnit == "db") {
        m_pLossMeterUnit->setCurrentIndex(LossLim_dB);
        m_pLabelLossLength->setTextColor(Qt::gray);
        m_eLossLengthType = LossLim_dB;
    } else if (m_config.mlossUnit == "km") {
        m_pLossMeterUnit->setCurrentIndex(LossLim_dBkm);
        m_pLabelLossLength->setTextColor(Qt::white);
        m_eLossLengthType = LossLim_dBkm;
    } else if (m_config.mlossUnit == "mi") {
        m_pLossMeterUnit->setCurrentIndex(LossLim_dBmi);
        m_pLabelLossLength->setTextColor(Qt::white);
        m_eLossLengthType = LossLim_dBmi;
    }
}

void NerioOpm::restoreTestMode()
{
    if (m_config.mTestMode == "PowerMeter") {
        puts("set testMode power meter ");
        m_pTestMode->setCurrentIndex(PowerMeter);
        m_eTestMode = PowerMeter;
        applyTestModeLayout(PowerMeter);
    } else if (m_config.mTestMode == "LossMeter") {
        puts("set testMode loss meter ");
        m_pTestMode->setCurrentIndex(LossMeter);
        m_eTestMode = LossMeter;
        applyTestModeLayout(LossMeter);
    }
}

// The length field's own rule, so that dB/km and dB/mi never divide by nothing.
void NerioOpm::restoreLength()
{
    m_fLength = OpmPage::textToFloat(m_config.mlossLength);
    if (!OpmPage::isValidLength(m_fLength))
        m_fLength = 1.0f;
}

void NerioOpm::restoreUnit()
{
    const int unit = OpmPage::indexIn(OpmPage::kUnitTexts, m_config.mUnit.toLatin1().constData());
    if (unit >= 0) {
        m_eRusultUnit = RusultUnit(unit);
        FixedText::copy(m_result.limitsUnit, OpmPage::kUnitTexts[unit]);
        if (m_eTestMode == PowerMeter)
            m_pLimits->setText(OpmPage::powerLimitsCaption(m_eRusultUnit));
    } else {
        FixedText::copy(m_result.limitsUnit, "dB");
    }
}
