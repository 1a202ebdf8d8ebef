#ifndef OPM_H
#define OPM_H

#include "cwidget.h"
#include "opmSetupConfig.h"
#include "opmShareRecord.h"

#include <QColor>
#include <QString>

class CCheckBox;
class CComboBox;
class CDialog;
class CLabel;
class CLineEdit;
class CMessageBox;
class CPushButton;
class CBrovaOpmDataEngine;
class OffsetBar;
class QHBoxLayout;
class QLayout;
class QTimer;

enum TestModeType { PowerMeter = 0, LossMeter = 1 };

enum RusultUnit { dB = 0, mW = 1, uW = 2 };

enum LossLengthType { LossLim_dB = 0, LossLim_dBkm = 1, LossLim_dBmi = 2 };

enum WaveLengthType {
    Type_850nmMMF = 0,
    Type_1310nmSMF = 1,
    Type_1490nmSMF = 2,
    Type_1550nmSMF = 3,
    Type_1625nmSMF = 4
};

// The wavelengths the page measures at: the selector's items and the reference table's rows.
enum { kWaveLengthCount = Type_1625nmSMF + 1 };

// One saved reading, as it was displayed.
struct Result
{
    char testMode[16];
    char waveLenth[16];
    char minimum[16];
    char maximum[16];
    char value[16];
    char ref[16];
    char pass[16];
    char limitsUnit[16];
    char fiberLength[16];
    bool isLimit;
    char time[30];
};
typedef Result Ressult_t;

// Saved readings are copied byte for byte; the layout is the same on the set and here.
OPM_STATIC_ASSERT(offsetof(Result, isLimit) == 144, isLimit_at_144);
OPM_STATIC_ASSERT(offsetof(Result, time) == 145, time_at_145);
OPM_STATIC_ASSERT(sizeof(Result) == 175, a_result_is_175_bytes);

// The Setup tab: live reading of the power reader, the setup controls and the reference level.
class NerioOpm : public CWidget
{
    Q_OBJECT
public:
    explicit NerioOpm(QWidget* parent = 0);
    ~NerioOpm();

    bool initialize();
    void translate();

signals:
    void exitUtil();

public slots:
    void clientQuit();

private slots:
    void onParmLineEditChanged();
    void onComboxChanged(int index);
    void onParmComboxChanged(int index);
    void onComboxWavelenChanged(int index);
    void onBtnChanged();
    void onReferBtnChanged();
    void onStateChanged();
    void handleDialog();
    void onReferenceRejected();
    void onTimer();

protected:
    void showEvent(QShowEvent* event);
    void hideEvent(QHideEvent* event);

private:
    friend struct OpmPageProbe;

    CWidget* CrtOpmInfoWidget();
    CDialog* CrtReferenceDialog();
    void DelReferenceDialog();
    void initalizeShareMem();
    void loadConfig();
    void setShareMemWaveLen(WaveLengthType type);
    void showResult();
    void setHoldInfo();
    void updateResultSummary();
    void deleteSpace(char* ptr);
    void saveResult();
    void setPowerLimits(CLineEdit* pParmLineEdit);
    void setEditSate();
    void setEnable(CLineEdit* pWidget, bool flag);

    // Helpers of the operations above.
    bool isShareMemReady() const;
    void startReference();
    void applyTestModeLayout(TestModeType mode);
    void showReferenceLabel(int waveLength);
    void showInputError(const QString& text);
    void fillResult(const char* valueText);
    void fillResultLimits();
    void connectControls(QWidget* parent);
    void showReading(const QColor& colour, const char* text);
    void showReadingColour(const QColor& colour);
    void showNotConnected();

    // The rows of the page, top to bottom (initialize), and the reference dialog's parts.
    QLayout* crtWaveModeRow();
    QLayout* crtSummaryRow();
    QLayout* crtReadingRow();
    QLayout* crtLimitsRow();
    QLayout* crtLimitValuesRow();
    CLabel* crtReferenceTitle();
    CLabel* crtReferenceText(const QString& text, int height, int width);
    CPushButton* crtReferenceButton(const QString& text);
    QLayout* crtReferenceLayout();
    void showReferenceTexts();
    void saveReferences();

    // The stored setup's parts (loadConfig).
    void loadReferences();
    void restoreWaveLength();
    void restoreLossUnit();
    void restoreTestMode();
    void restoreLength();
    void restoreUnit();

    CLabel* l_pTitle;
    CLabel* pFileName;
    CLabel* pWaveLength;
    CComboBox* m_pWaveLength;
    CLabel* pTestMode;
    CComboBox* m_pTestMode;
    CLabel* m_pSummary;
    CPushButton* m_pHold;
    CPushButton* m_pSave;
    CPushButton* m_pReference;
    CPushButton* m_pdBm;
    CPushButton* m_pmW;
    CPushButton* m_puW;
    CWidget* m_pOpmInfoWidget;
    CLabel* m_pOpmInfoTitle;
    CLabel* m_pOpmRefLabel;
    CLabel* m_pOpmCurValue;
    CCheckBox* m_pLimits;
    CLabel* pMinimum;
    CLineEdit* m_pMinimum;
    CLabel* pMaximum;
    CLineEdit* m_pMaximum;
    CComboBox* m_pLossMeterUnit;
    CLabel* m_pLabelLossLength;
    CLineEdit* m_pLossLength;
    CDialog* m_pReferenceDialog;
    CPushButton* m_pReferenceSet;
    CPushButton* m_pReferenceCancel;
    CLabel* m_pRefLabel1;
    CLabel* m_pRefLabel2;
    CLabel* m_pRefLabel3;
    CLabel* m_pRefTitle;
    QTimer* m_pTimer;
    OpmShareRecord* m_addr;
    OpmShareRecord Opm;
    OpmShareRecord m_sOpmRef;
    bool m_bHold;
    bool m_bPowerLimits;
    TestModeType m_eTestMode;
    RusultUnit m_eRusultUnit;
    LossLengthType m_eLossLengthType;
    char m_aWaveLengthRef[kWaveLengthCount][16];
    WaveLengthType m_eWaveLength;
    float m_fLength;
    float m_fPowerMin;
    float m_fPowerMax;
    CMessageBox* m_pMsgbox;
    QColor m_qColorTextColor;
    Result m_result;
    // The limits that m_result.minimum and maximum were last formatted from.
    float m_aResultLimits[2];
    bool m_bResultLimitsSet;
    bool m_bPass;
    // What the tick last gave the reading, the summary line and the dBm button, so that it
    // sets them only when they change: a new palette or string costs far more than the
    // comparison, and what they show seldom changes.
    QColor m_qColorShown;
    QString m_strValueShown;
    QString m_strSummaryShown;
    QString m_strdBmShown;
    OffsetBar* m_pOffsetBarResult;
    CBrovaOpmDataEngine* m_opmData;
    COpmSetupConfig m_config;
};

#endif // OPM_H
