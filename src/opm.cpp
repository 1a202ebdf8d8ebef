#include "opm.h"

#include "ccheckbox.h"
#include "ccombobox.h"
#include "cdialog.h"
#include "clabel.h"
#include "clineedit.h"
#include "cpushbutton.h"
#include "cwidgetstyle.h"
#include "fixedText.h"
#include "opmMain.h"
#include "opmWidgets.h"
#include "readerProcess.h"
#include "toolkitValues.h"

#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The Setup tab's construction, life and link to the reader. The rest of the page: opmLayout
// (widgets and texts), opmDisplay (the tick and saving), opmControls (the setup controls),
// opmReference (the reference dialog), opmRestore (the stored setup).

namespace {

// What the reference follows until a reading comes: 850 nm, 0 dBm, not captured.
OpmShareRecord defaultReference()
{
    OpmShareRecord record = {};
    FixedText::copy(record.wavelenth, "850");
    FixedText::copy(record.unit, "dBm");
    FixedText::copy(record.value, "0");
    record.flag = 0;
    return record;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Construction and lifecycle

// Every field starts here; the constructor's body builds, attaches and restores.
NerioOpm::NerioOpm(QWidget* parent)
    : CWidget(parent), l_pTitle(0), pFileName(0), pWaveLength(0), m_pWaveLength(0), pTestMode(0),
      m_pTestMode(0), m_pSummary(0), m_pHold(0), m_pSave(0), m_pReference(0), m_pdBm(0), m_pmW(0),
      m_puW(0), m_pOpmInfoWidget(0), m_pOpmInfoTitle(0), m_pOpmRefLabel(0), m_pOpmCurValue(0),
      m_pLimits(0), pMinimum(0), m_pMinimum(0), pMaximum(0), m_pMaximum(0), m_pLossMeterUnit(0),
      m_pLabelLossLength(0), m_pLossLength(0), m_pReferenceDialog(0), m_pReferenceSet(0),
      m_pReferenceCancel(0), m_pRefLabel1(0), m_pRefLabel2(0), m_pRefLabel3(0), m_pRefTitle(0),
      m_pTimer(0), m_addr(0), Opm(), m_sOpmRef(defaultReference()), m_bHold(false),
      m_bPowerLimits(false), m_eTestMode(PowerMeter), m_eRusultUnit(dB),
      m_eLossLengthType(LossLim_dB), m_aWaveLengthRef(), m_eWaveLength(Type_850nmMMF),
      m_fLength(1.0f), m_fPowerMin(-60.0f), m_fPowerMax(10.0f), m_pMsgbox(0),
      m_qColorTextColor(Qt::black), m_result(), m_aResultLimits(), m_bResultLimitsSet(false),
      m_bPass(false), m_qColorShown(), m_strValueShown(), m_strSummaryShown(), m_strdBmShown(),
      m_pOffsetBarResult(0), m_opmData(0)
{
    m_opmData = CBrovaOpmDataEngine::getSingleInstance();
    if (!m_opmData) {
        puts("new CBrovaOpmDataEngine error ");
        return;
    }
    initialize();
    initalizeShareMem();

    m_pLossMeterUnit->hide();
    m_pLossLength->hide();
    m_pOpmRefLabel->hide();

    loadConfig();
    updateResultSummary();
    connectControls(parent);

    setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));
    setWindowFlags(Qt::FramelessWindowHint);
}

NerioOpm::~NerioOpm() { }

// Only once the stored setup is applied, so that restoring it runs no operator's slot.
void NerioOpm::connectControls(QWidget* parent)
{
    connect(m_pTestMode, SIGNAL(activated(int)), this, SLOT(onParmComboxChanged(int)));
    connect(m_pWaveLength, SIGNAL(activated(int)), this, SLOT(onComboxWavelenChanged(int)));
    connect(m_pLimits, SIGNAL(stateChanged(int)), this, SLOT(onStateChanged()));
    connect(m_pSave, SIGNAL(clicked()), this, SLOT(onBtnChanged()));
    connect(m_pReference, SIGNAL(clicked()), this, SLOT(onBtnChanged()));
    connect(m_pdBm, SIGNAL(clicked()), this, SLOT(onBtnChanged()));
    connect(m_pmW, SIGNAL(clicked()), this, SLOT(onBtnChanged()));
    connect(m_puW, SIGNAL(clicked()), this, SLOT(onBtnChanged()));
    connect(m_pHold, SIGNAL(clicked()), this, SLOT(onBtnChanged()));
    connect(m_pLossMeterUnit, SIGNAL(activated(int)), this, SLOT(onComboxChanged(int)));
    connect(m_pLossLength, SIGNAL(textEdited(QString)), this, SLOT(onParmLineEditChanged()));
    connect(m_pMinimum, SIGNAL(textEdited(QString)), this, SLOT(onParmLineEditChanged()));
    connect(m_pMaximum, SIGNAL(textEdited(QString)), this, SLOT(onParmLineEditChanged()));
    if (parent)
        connect(this, SIGNAL(exitUtil()), parent, SIGNAL(requestToClose()));
}

void NerioOpm::showEvent(QShowEvent* event)
{
    CWidget::showEvent(event);
    // Without a store or a record there is nothing to poll.
    if (m_pTimer && isShareMemReady())
        m_pTimer->start(1000);
}

void NerioOpm::hideEvent(QHideEvent* event)
{
    CWidget::hideEvent(event);
    if (m_pTimer)
        m_pTimer->stop();
}

void NerioOpm::clientQuit()
{
    if (m_pReferenceDialog) {
        delete m_pReferenceDialog;
        m_pReferenceDialog = 0;
    }
    ReaderProcess::kill();
    close();
    exit(0);
}

// ---------------------------------------------------------------------------------------------
// Reader link

void NerioOpm::initalizeShareMem()
{
    const key_t key = Getkey();
    m_addr = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(key));
    if (isShareMemReady())
        std::memcpy(&Opm, m_addr, sizeof Opm);
    OpmPage::terminateTexts(Opm);
    printf("---flag:%x---\n", unsigned(Opm.flag));
    FixedText::copy(Opm.wavelenth, "850");
    FixedText::copy(Opm.unit, "dBm");
    FixedText::copy(Opm.value, "0");

    m_pTimer = new QTimer(this);
    connect(m_pTimer, SIGNAL(timeout()), this, SLOT(onTimer()));

    if (!isShareMemReady())
        showNotConnected();
}

bool NerioOpm::isShareMemReady() const { return isShareMemAttached(m_addr); }

void NerioOpm::setShareMemWaveLen(WaveLengthType type)
{
    if (isShareMemReady())
        m_addr->wavelenthTarget = type;
}
