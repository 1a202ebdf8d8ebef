#include "opm.h"

#include "ccheckbox.h"
#include "ccombobox.h"
#include "cdialog.h"
#include "clabel.h"
#include "clineedit.h"
#include "cmessagebox.h"
#include "cpushbutton.h"
#include "cwidgetstyle.h"
#include "devicePaths.h"
#include "fixedText.h"
#include "offsetBar.h"
#include "opmMain.h"
#include "opmReading.h"

#include <QBoxLayout>
#include <QFontMetrics>
#include <QPointer>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <stdint.h>

namespace {

const char* const kWaveLengthTexts[] = { "850", "1310", "1490", "1550", "1625" };
const int kWaveLengthCount = 5;

// Display units as the settings file keeps them; "dB" stands for the dBm display.
const char* const kUnitTexts[] = { "dB", "mW", "uW" };

// Index of text in a list of the reader's or the settings file's texts, or -1.
template <size_t N>
int indexIn(const char* const (&texts)[N], const char* text)
{
    for (size_t i = 0; i < N; ++i) {
        if (std::strcmp(text, texts[i]) == 0)
            return int(i);
    }
    return -1;
}

int waveLengthIndex(const char* text) { return indexIn(kWaveLengthTexts, text); }

QString powerLimitsCaption(RusultUnit unit)
{
    switch (unit) {
    case mW:
        return QObject::tr("Power Limits (mW)");
    case uW:
        return QObject::tr("Power Limits (uW)");
    case dB:
        break;
    }
    return QObject::tr("Power Limits (dBm)");
}

float textToFloat(const QString& text) { return text.trimmed().toFloat(); }

QString formatG6(float value) { return QString::number(double(value), 'g', 6); }

bool isValidLength(float length) { return length > 0.0f && length <= 99999.0f; }

// Ends every text field of a copied record inside its field, whatever the reader left there.
void terminateTexts(OpmShareRecord& record)
{
    record.wavelenth[sizeof record.wavelenth - 1] = '\0';
    record.unit[sizeof record.unit - 1] = '\0';
    record.value[sizeof record.value - 1] = '\0';
    record.deviceType[sizeof record.deviceType - 1] = '\0';
}

int addressAsInt(const void* p) { return static_cast<int>(reinterpret_cast<intptr_t>(p)); }

// For the widgets of a tick: a new palette or string costs far more than the comparison, and
// what they show seldom changes.
void showTextColour(CLabel* label, const QColor& colour)
{
    if (label->textColor() != colour)
        label->setTextColor(colour);
}

template <typename Widget>
void showLatin1(Widget* widget, const char* text)
{
    const QLatin1String latin1(text);
    if (widget->text() != latin1)
        widget->setText(QString(latin1));
}

const Qt::Alignment kRightCentred = Qt::AlignRight | Qt::AlignCenter;

// What placing a line of text in one font takes, measured once: its line height and the
// advances of Latin-1 characters. A width from the characters' own advances needs no shaping,
// which costs more than the rest of a tick (shaping moves a glyph by a pixel or two at most).
class CLineMetrics
{
public:
    explicit CLineMetrics(const QFont& font)
        : m_font(font), m_metrics(font), m_nLineHeight(m_metrics.height())
    {
        std::memset(m_aMeasured, 0, sizeof m_aMeasured);
    }

    const QFont& font() const { return m_font; }
    int lineHeight() const { return m_nLineHeight; }

    // -1 for a text that is not one line of Latin-1 characters (a translated message, drawn
    // with glyphs of other fonts that may reach further).
    int width(const QString& text)
    {
        int width = 0;
        for (int i = 0; i < text.size(); ++i) {
            const ushort code = text.at(i).unicode();
            if (code >= 256 || code == '\n')
                return -1;
            width += advance(code);
        }
        return width;
    }

private:
    int advance(ushort code)
    {
        if (!m_aMeasured[code]) {
#if QT_VERSION >= 0x050B00
            m_aAdvances[code] = m_metrics.horizontalAdvance(QChar(code));
#else
            m_aAdvances[code] = m_metrics.width(QChar(code));
#endif
            m_aMeasured[code] = true;
        }
        return m_aAdvances[code];
    }

    QFont m_font;
    QFontMetrics m_metrics;
    int m_nLineHeight;
    int m_aAdvances[256];
    bool m_aMeasured[256];
};

// The measures of a label's font, kept for the last font asked for.
CLineMetrics& lineMetrics(const QFont& font)
{
    static CLineMetrics* s_pMetrics = 0;
    if (!s_pMetrics || !(s_pMetrics->font() == font)) {
        delete s_pMetrics;
        s_pMetrics = new CLineMetrics(font);
    }
    return *s_pMetrics;
}

// Where a right-aligned, vertically centred label draws its one line of text, with room on
// each side for glyphs that reach past their advance or past the font's ascent or descent.
QRect lineBox(const QLabel* label, const QString& text)
{
    const QRect box = label->contentsRect();
    if (!(label->alignment() & Qt::AlignRight) || !(label->alignment() & Qt::AlignVCenter))
        return box;
    CLineMetrics& metrics = lineMetrics(label->font());
    const int lineHeight = metrics.lineHeight();
    const int room = lineHeight / 4;
    const int textWidth = metrics.width(text);
    if (textWidth < 0)
        return box;
    const int width = textWidth + 2 * room;
    const QRect line(box.right() + 1 - width, box.top() + (box.height() - lineHeight) / 2 - room,
                     width, lineHeight + 2 * room);
    return line.intersected(box);
}

// A new reading repaints where the old and the new text are drawn: the label would repaint all
// of its white box, and filling that took a tenth of a tick on the set's toolkit. The rest of
// the box is background that neither text reaches.
void showReadingText(CLabel* label, const char* text)
{
    const QLatin1String latin1(text);
    if (label->text() == latin1)
        return;
    const QRect before = lineBox(label, label->text());
    const bool wasDisabled = label->testAttribute(Qt::WA_UpdatesDisabled);
    label->setAttribute(Qt::WA_UpdatesDisabled, true);
    label->setText(QString(latin1));
    label->setAttribute(Qt::WA_UpdatesDisabled, wasDisabled);
    label->update(before | lineBox(label, label->text()));
}

// The page's building blocks: caption labels, selectors, buttons and numeric fields all share
// one look each.
CLabel* newCaption(const QString& text, QWidget* parent)
{
    CLabel* label = new CLabel(text, parent);
    label->setFixedWidth(100);
    label->setTextColor(Qt::white);
    label->setBackgroundColor(CWidgetStyle::getColor(0));
    label->setAlignment(kRightCentred);
    return label;
}

CComboBox* newSelector(const QStringList& items, QWidget* parent)
{
    CComboBox* combo = new CComboBox(parent);
    combo->setFixedWidth(180);
    combo->addItems(items);
    return combo;
}

CPushButton* newButton(const QString& text, QWidget* parent)
{
    CPushButton* button = new CPushButton(text, parent);
    button->setStyle(CPushButton::StyleGreen, false);
    return button;
}

CLineEdit* newNumberEdit(const QString& text, QWidget* parent)
{
    CLineEdit* edit = new CLineEdit(text, parent);
    edit->setFixedWidth(180);
    edit->setSKPType(3);
    return edit;
}

template <typename Box>
Box* newBox(int spacing)
{
    Box* box = new Box;
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(spacing);
    return box;
}

// A column of up to three widgets (a null one is left out), pushed to the top.
QVBoxLayout* newColumn(int spacing, QWidget* first, QWidget* second = 0, QWidget* third = 0)
{
    QVBoxLayout* column = newBox<QVBoxLayout>(spacing);
    QWidget* const widgets[] = { first, second, third };
    for (size_t i = 0; i < sizeof widgets / sizeof widgets[0]; ++i) {
        if (widgets[i])
            column->addWidget(widgets[i]);
    }
    column->addStretch();
    return column;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Construction and lifecycle

NerioOpm::NerioOpm(QWidget* parent)
    : CWidget(parent), l_pTitle(0), pFileName(0), pWaveLength(0), m_pWaveLength(0), pTestMode(0),
      m_pTestMode(0), m_pSummary(0), m_pHold(0), m_pSave(0), m_pReference(0), m_pdBm(0), m_pmW(0),
      m_puW(0), m_pOpmInfoWidget(0), m_pOpmInfoTitle(0), m_pOpmRefLabel(0), m_pOpmCurValue(0),
      m_pLimits(0), pMinimum(0), m_pMinimum(0), pMaximum(0), m_pMaximum(0), m_pLossMeterUnit(0),
      m_pLabelLossLength(0), m_pLossLength(0), m_pReferenceDialog(0), m_pReferenceSet(0),
      m_pReferenceCancel(0), m_pRefLabel1(0), m_pRefLabel2(0), m_pRefLabel3(0), m_pRefTitle(0),
      m_pTimer(0), m_addr(0), Opm(), m_sOpmRef(), m_bHold(false), m_bPowerLimits(false),
      m_eTestMode(PowerMeter), m_eRusultUnit(dB), m_eLossLengthType(LossLim_dB), m_aWaveLengthRef(),
      m_eWaveLength(Type_850nmMMF), m_fLength(1.0f), m_fPowerMin(-60.0f), m_fPowerMax(10.0f),
      m_pMsgbox(0), m_result(), m_aResultLimits(), m_bResultLimitsSet(false), m_bPass(false),
      m_pOffsetBarResult(0), m_opmData(0)
{
    m_opmData = CBrovaOpmDataEngine::getSingleInstance();
    if (!m_opmData) {
        puts("new CBrovaOpmDataEngine error ");
        return;
    }
    m_bHold = false;
    initialize();
    initalizeShareMem();

    m_pLossMeterUnit->hide();
    m_pLossLength->hide();
    m_pOpmRefLabel->hide();

    m_pMsgbox = 0;
    m_pReferenceDialog = 0;
    m_eTestMode = PowerMeter;
    m_eRusultUnit = dB;
    m_eLossLengthType = LossLim_dB;
    m_eWaveLength = Type_850nmMMF;
    m_fLength = 1.0f;
    m_fPowerMin = -60.0f;
    m_fPowerMax = 10.0f;
    FixedText::copy(m_sOpmRef.wavelenth, "850");
    FixedText::copy(m_sOpmRef.unit, "dBm");
    FixedText::copy(m_sOpmRef.value, "0");
    m_sOpmRef.flag = 0;
    m_bPowerLimits = false;
    m_bPass = false;

    loadConfig();
    m_qColorTextColor = Qt::black;
    updateResultSummary();

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

    setBackgroundColor(CWidgetStyle::getColor(0));
    setWindowFlags(Qt::FramelessWindowHint);
}

NerioOpm::~NerioOpm() { }

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
    DevicePaths::runCommand(DevicePaths::killReaderCommand());
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
    terminateTexts(Opm);
    printf("---flag:%x---\n", unsigned(Opm.flag));
    FixedText::copy(Opm.wavelenth, "850");
    FixedText::copy(Opm.unit, "dBm");
    FixedText::copy(Opm.value, "0");

    m_pTimer = new QTimer(this);
    connect(m_pTimer, SIGNAL(timeout()), this, SLOT(onTimer()));

    if (!isShareMemReady()) {
        m_pOpmCurValue->setTextColor(Qt::red);
        m_pOpmCurValue->setText(QObject::tr("OPM Not Connected!"));
    }
}

bool NerioOpm::isShareMemReady() const { return isShareMemAttached(m_addr); }

void NerioOpm::setShareMemWaveLen(WaveLengthType type)
{
    if (isShareMemReady())
        m_addr->wavelenthTarget = type;
}

// ---------------------------------------------------------------------------------------------
// Layout and texts

bool NerioOpm::initialize()
{
    setWindowTitle(QObject::tr("Optical Power Meter"));

    pWaveLength = newCaption(QObject::tr("Wavelength"), this);
    m_pWaveLength = newSelector(QStringList() << "850 nm MMF"
                                              << "1310 nm SMF"
                                              << "1490 nm SMF"
                                              << "1550 nm SMF"
                                              << "1625 nm SMF",
                                this);
    pTestMode = newCaption(QObject::tr("Test Mode"), this);
    m_pTestMode = newSelector(
        QStringList() << QObject::tr("Power Meter(OPM)") << QObject::tr("Loss Meter"), this);
    QHBoxLayout* l_pWaveModeHLyt = newBox<QHBoxLayout>(0);
    l_pWaveModeHLyt->addSpacing(35);
    l_pWaveModeHLyt->addWidget(pWaveLength);
    l_pWaveModeHLyt->addSpacing(5);
    l_pWaveModeHLyt->addWidget(m_pWaveLength);
    l_pWaveModeHLyt->addSpacing(10);
    l_pWaveModeHLyt->addWidget(pTestMode);
    l_pWaveModeHLyt->addSpacing(5);
    l_pWaveModeHLyt->addWidget(m_pTestMode);
    l_pWaveModeHLyt->addStretch();

    m_pSummary = new CLabel(this);
    m_pSummary->setFixedSize(640, 20);
    m_pSummary->setTextColor(Qt::white);
    m_pSummary->setTextSize(10);
    m_pSummary->setBackgroundColor(CWidgetStyle::getColor(0));
    m_pSummary->setAlignment(Qt::AlignLeft);
    QHBoxLayout* summaryLayOut = new QHBoxLayout;
    summaryLayOut->setAlignment(Qt::AlignLeft);
    summaryLayOut->setContentsMargins(0, 0, 0, 0);
    summaryLayOut->addSpacing(10);
    summaryLayOut->addWidget(m_pSummary);

    m_pHold = newButton(QObject::tr("Hold"), this);
    m_pSave = newButton(QObject::tr("Save"), this);
    m_pReference = newButton(QObject::tr("Reference"), this);
    m_pReference->hide();
    m_pdBm = newButton(tr("dBm"), this);
    m_pmW = newButton(tr("mW"), this);
    m_puW = newButton(tr("uW"), this);
    QVBoxLayout* pSubVLyt1 = newColumn(20, m_pHold, m_pSave, m_pReference);
    QVBoxLayout* pSubVLyt3 = newColumn(20, m_pdBm, m_pmW, m_puW);
    QVBoxLayout* pSubVLyt2 = newColumn(0, CrtOpmInfoWidget());
    QHBoxLayout* pSubMainHLyt4 = newBox<QHBoxLayout>(0);
    pSubMainHLyt4->addSpacing(30);
    pSubMainHLyt4->addLayout(pSubVLyt1);
    pSubMainHLyt4->addSpacing(30);
    pSubMainHLyt4->addLayout(pSubVLyt2);
    pSubMainHLyt4->addSpacing(30);
    pSubMainHLyt4->addLayout(pSubVLyt3);
    pSubMainHLyt4->addStretch();

    m_pLimits = new CCheckBox(QObject::tr("Power Limits (dBm)"), this);
    m_pLimits->setFixedWidth(190);
    m_pLimits->setForegroundColor(Qt::white);
    m_pLimits->setBorderVisible(false);
    m_pLossMeterUnit = newSelector(QStringList() << "dB"
                                                 << "dB/km"
                                                 << "dB/mi",
                                   this);
    m_pLabelLossLength = newCaption(QObject::tr("Length (km)"), this);
    m_pLabelLossLength->hide();
    m_pLossLength = newNumberEdit(QString(), this);
    QHBoxLayout* pSubPowerVLyt1 = new QHBoxLayout;
    QHBoxLayout* pSubPowerVLyt1_1 = newBox<QHBoxLayout>(0);
    pSubPowerVLyt1_1->addSpacing(20);
    pSubPowerVLyt1_1->addWidget(m_pLimits);
    pSubPowerVLyt1_1->setSpacing(5);
    pSubPowerVLyt1_1->addWidget(m_pLossMeterUnit);
    pSubPowerVLyt1_1->addStretch();
    QHBoxLayout* pSubPowerVLyt1_2 = newBox<QHBoxLayout>(0);
    pSubPowerVLyt1_2->addSpacing(7);
    pSubPowerVLyt1_2->addWidget(m_pLabelLossLength);
    pSubPowerVLyt1_2->addSpacing(5);
    pSubPowerVLyt1_2->addWidget(m_pLossLength);
    pSubPowerVLyt1_2->addStretch();
    pSubPowerVLyt1->addLayout(pSubPowerVLyt1_1);
    pSubPowerVLyt1->addLayout(pSubPowerVLyt1_2);

    pMinimum = newCaption(QObject::tr("Minimum"), this);
    m_pMinimum = newNumberEdit(tr("-60"), this);
    m_pMinimum->setRange(-60, 10);
    pMaximum = newCaption(QObject::tr("Maximum"), this);
    m_pMaximum = newNumberEdit(tr("10"), this);
    m_pMaximum->setRange(-60, 10);
    QHBoxLayout* pSubPowerHLyt2 = newBox<QHBoxLayout>(0);
    pSubPowerHLyt2->addSpacing(40);
    pSubPowerHLyt2->addWidget(pMinimum);
    pSubPowerHLyt2->addSpacing(5);
    pSubPowerHLyt2->addWidget(m_pMinimum);
    pSubPowerHLyt2->addSpacing(18);
    pSubPowerHLyt2->addWidget(pMaximum);
    pSubPowerHLyt2->addSpacing(5);
    pSubPowerHLyt2->addWidget(m_pMaximum);
    pSubPowerHLyt2->addStretch();

    QVBoxLayout* pSubMainPowerVLyt3 = newBox<QVBoxLayout>(10);
    pSubMainPowerVLyt3->addLayout(pSubPowerVLyt1);
    pSubMainPowerVLyt3->addLayout(pSubPowerHLyt2);

    // Placed by hand, on top of the reading panel, whatever the layouts do.
    m_pOffsetBarResult = new OffsetBar(this);
    m_pOffsetBarResult->move(205, 200);

    QVBoxLayout* pMainVLyt = new QVBoxLayout(this);
    pMainVLyt->setContentsMargins(0, 0, 0, 0);
    pMainVLyt->addSpacing(20);
    pMainVLyt->addLayout(l_pWaveModeHLyt);
    pMainVLyt->addSpacing(5);
    pMainVLyt->addLayout(summaryLayOut);
    pMainVLyt->addSpacing(5);
    pMainVLyt->addLayout(pSubMainHLyt4);
    pMainVLyt->addSpacing(15);
    pMainVLyt->addLayout(pSubMainPowerVLyt3);
    pMainVLyt->addStretch();
    setLayout(pMainVLyt);
    return false;
}

CWidget* NerioOpm::CrtOpmInfoWidget()
{
    m_pOpmInfoWidget = new CWidget(this);
    m_pOpmInfoWidget->setFixedSize(300, 160);

    m_pOpmInfoTitle = new CLabel(QObject::tr("Optical Power"), m_pOpmInfoWidget);
    m_pOpmInfoTitle->setBackgroundColor(Qt::white);

    m_pOpmRefLabel = new CLabel(tr("Ref.: 0 dBm"), m_pOpmInfoWidget);
    m_pOpmRefLabel->setFixedWidth(130);
    m_pOpmRefLabel->setBackgroundColor(Qt::white);

    m_pOpmCurValue = new CLabel(tr(""), m_pOpmInfoWidget);
    // The panel's width, which the label fills anyway: at a fixed size a new reading does not
    // make the panel lay itself out again.
    m_pOpmCurValue->setFixedSize(m_pOpmInfoWidget->width(), 70);
    m_pOpmCurValue->setTextSize(20);
    m_pOpmCurValue->setBackgroundColor(Qt::white);
    m_pOpmCurValue->setAlignment(kRightCentred);

    QHBoxLayout* titleRow = new QHBoxLayout;
    titleRow->setContentsMargins(0, 0, 0, 0);
    titleRow->setSpacing(0);
    titleRow->addWidget(m_pOpmInfoTitle);
    titleRow->addWidget(m_pOpmRefLabel);

    QVBoxLayout* panel = new QVBoxLayout(m_pOpmInfoWidget);
    panel->setContentsMargins(0, 0, 0, 0);
    panel->setSpacing(0);
    panel->setAlignment(Qt::AlignTop);
    panel->addLayout(titleRow);
    panel->addWidget(m_pOpmCurValue);

    m_pOpmInfoWidget->setBackgroundColor(Qt::white);
    return m_pOpmInfoWidget;
}

void NerioOpm::translate()
{
    pWaveLength->setText(QObject::tr("Wavelength"));
    pTestMode->setText(QObject::tr("Test Mode"));

    const int mode = m_pTestMode->currentIndex();
    m_pTestMode->clear();
    m_pTestMode->addItems(QStringList()
                          << QObject::tr("Power Meter(OPM)") << QObject::tr("Loss Meter"));
    m_pTestMode->setCurrentIndex(mode);

    m_pHold->setText(QObject::tr("Hold"));
    m_pReference->setText(QObject::tr("Reference"));
    m_pLabelLossLength->setText(QObject::tr("Length (km)"));
    m_pSave->setText(QObject::tr("Save"));

    m_pLimits->setText(m_eTestMode == LossMeter ? QObject::tr("Loss Limits")
                                                : powerLimitsCaption(m_eRusultUnit));

    pMinimum->setText(QObject::tr("Minimum"));
    pMaximum->setText(QObject::tr("Maximum"));

    if (l_pTitle)
        l_pTitle->setText(QObject::tr("File Name"));
    if (pFileName)
        pFileName->setText(QObject::tr("File Name:"));
}

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
    terminateTexts(Opm);

    if (Opm.flag == OpmFlagNoReading) {
        showTextColour(m_pOpmCurValue, Qt::red);
        return;
    }
    if (Opm.flag == OpmFlagNotConnected) {
        showTextColour(m_pOpmCurValue, Qt::red);
        m_pOpmCurValue->setText(QObject::tr("OPM Not Connected!"));
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
        showLatin1(m_pdBm, m_result.limitsUnit);
    // The bar places the reading as the reader sent it, whatever the mode and unit.
    const double reading = atof(Opm.value);

    showTextColour(m_pOpmCurValue, m_qColorTextColor);
    showReadingText(m_pOpmCurValue, text);

    if (m_bPowerLimits)
        m_pOffsetBarResult->setRangedOffset(double(m_fPowerMin), double(m_fPowerMax), reading);
    else
        m_pOffsetBarResult->setRangedOffset(-60.0, 10.0, reading);

    printf("Opm.wavelenth (%s) \n", Opm.wavelenth);
    const int reported = waveLengthIndex(Opm.wavelenth);
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
    showLatin1(m_pSummary, line);
}

void NerioOpm::deleteSpace(char* ptr)
{
    char kept[16] = {};
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

// ---------------------------------------------------------------------------------------------
// Setup controls

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
    m_config.mWaveLenth = kWaveLengthTexts[index];
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
        if (!isValidLength(m_fLength)) {
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
        if (m_pLossMeterUnit->currentIndex() == 0) {
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
        m_pLimits->setText(powerLimitsCaption(m_eRusultUnit));
        m_config.mUnit = kUnitTexts[m_eRusultUnit];
        m_config.COpmSetupConfigSave();
    }
}

// ---------------------------------------------------------------------------------------------
// Reference level

void NerioOpm::startReference()
{
    // A second press while the dialog is open: the open one stays, Set and Cancel answer it.
    if (m_pReferenceDialog) {
        m_pReferenceDialog->raise();
        m_pReferenceDialog->activateWindow();
        return;
    }
    CrtReferenceDialog();
    char tmp[256];
    std::memset(tmp, 0, sizeof tmp);
    m_sOpmRef.flag = 1;
    snprintf(tmp, sizeof tmp, "Current Optical Level:%s %s at %s nm", Opm.value, Opm.unit,
             Opm.wavelenth);
    m_pRefLabel2->setText(QString::fromLatin1(tmp));
    std::memset(tmp, 0, sizeof tmp);
    snprintf(
        tmp, sizeof tmp,
        "Or press Cancel instead if you prefer to keep the previously stored value of %.*s dBm",
        int(FixedText::length(m_aWaveLengthRef[m_eWaveLength])), m_aWaveLengthRef[m_eWaveLength]);
    m_pRefLabel3->setText(QString::fromLatin1(tmp));
    m_pReferenceDialog->show();
}

CDialog* NerioOpm::CrtReferenceDialog()
{
    m_pReferenceDialog = new CDialog(this);
    m_pReferenceDialog->setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    m_pReferenceDialog->setWindowModality(Qt::ApplicationModal);
    m_pReferenceDialog->setBorderWidth(5);
    m_pReferenceDialog->setBorderColor(Qt::gray);
    m_pReferenceDialog->setBackgroundColor(CWidgetStyle::getColor(1));
    m_pReferenceDialog->resize(385, 250);
    const int labelWidth = m_pReferenceDialog->width() + 10;

    m_pRefTitle = new CLabel(QObject::tr("Reference Power Level"), m_pReferenceDialog);
    m_pRefTitle->setBackgroundColor(Qt::green);
    m_pRefTitle->setTextColor(Qt::white);
    m_pRefTitle->setFixedHeight(35);
    m_pRefTitle->setAlignment(Qt::AlignCenter);
    QFont titleFont;
    titleFont.setBold(true);
    titleFont.setPixelSize(20);
    m_pRefTitle->setFont(titleFont);

    m_pRefLabel1 = new CLabel(
        QObject::tr("Please use a short and clean optical patch cord to connect the\nLaser Light "
                    "Source directly to the OPM port on this unit,\nto set the output reference "
                    "level.\nPress Set to store and use the current reading."),
        m_pReferenceDialog);
    m_pRefLabel1->setWrapMode(CLabel::WrapMode(1));
    m_pRefLabel1->setAutoStyleEnabled(true);
    m_pRefLabel1->setFixedHeight(100);
    m_pRefLabel1->setBackgroundColor(Qt::white);
    m_pRefLabel1->setFixedWidth(labelWidth);

    m_pRefLabel2 = new CLabel(tr(""), m_pReferenceDialog);
    m_pRefLabel2->setAlignment(Qt::AlignCenter);
    m_pRefLabel2->setBackgroundColor(Qt::white);
    m_pRefLabel2->setFixedWidth(labelWidth);

    m_pRefLabel3 = new CLabel(tr(""), m_pReferenceDialog);
    m_pRefLabel3->setWrapMode(CLabel::WrapMode(1));
    m_pRefLabel3->setAutoStyleEnabled(true);
    m_pRefLabel3->setFixedHeight(50);
    m_pRefLabel3->setBackgroundColor(Qt::white);
    m_pRefLabel3->setFixedWidth(labelWidth);

    m_pReferenceSet = new CPushButton(QObject::tr("Set"), m_pReferenceDialog);
    m_pReferenceSet->setStyle(CPushButton::StyleGreen, false);
    m_pReferenceSet->setBackgroundColor(CWidgetStyle::getColor(1));
    m_pReferenceCancel = new CPushButton(QObject::tr("Cancel"), m_pReferenceDialog);
    m_pReferenceCancel->setStyle(CPushButton::StyleGreen, false);
    m_pReferenceCancel->setBackgroundColor(CWidgetStyle::getColor(1));

    QHBoxLayout* pReferenceSubLayout = new QHBoxLayout;
    pReferenceSubLayout->addWidget(m_pReferenceSet);
    pReferenceSubLayout->addWidget(m_pReferenceCancel);

    QVBoxLayout* pMainLayout = new QVBoxLayout(m_pReferenceDialog);
    pMainLayout->setContentsMargins(5, 5, 5, 5);
    pMainLayout->setSpacing(0);
    pMainLayout->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    pMainLayout->addWidget(m_pRefTitle);
    pMainLayout->addWidget(m_pRefLabel1);
    pMainLayout->addWidget(m_pRefLabel2);
    pMainLayout->addWidget(m_pRefLabel3);
    pMainLayout->addStretch(1);
    pMainLayout->addLayout(pReferenceSubLayout);

    connect(m_pReferenceSet, SIGNAL(clicked()), this, SLOT(onReferBtnChanged()));
    connect(m_pReferenceCancel, SIGNAL(clicked()), this, SLOT(onReferBtnChanged()));
    // Escape or a close of the toolkit's dialog counts as Cancel.
    connect(m_pReferenceDialog, SIGNAL(rejected()), this, SLOT(onReferenceRejected()));

    printf("CrtReferenceDialog %d\n ", addressAsInt(m_pReferenceDialog));
    return m_pReferenceDialog;
}

void NerioOpm::onReferBtnChanged()
{
    puts("onReferBtnChanged ");
    CPushButton* button = qobject_cast<CPushButton*>(sender());
    if (!button || !m_pReferenceDialog)
        return;
    if (button == m_pReferenceSet) {
        printf("------Cur----m_sOpmRef.value---%s---\n", m_sOpmRef.value);
        FixedText::copyField(m_aWaveLengthRef[m_eWaveLength], m_sOpmRef.value);
        showReferenceLabel(m_eWaveLength);
        m_sOpmRef.flag = 0;
        m_config.mreference850 = QString::fromLatin1(m_aWaveLengthRef[0]);
        m_config.mreference1310 = QString::fromLatin1(m_aWaveLengthRef[1]);
        m_config.mreference1490 = QString::fromLatin1(m_aWaveLengthRef[2]);
        m_config.mreference1550 = QString::fromLatin1(m_aWaveLengthRef[3]);
        m_config.mreference1625 = QString::fromLatin1(m_aWaveLengthRef[4]);
        DelReferenceDialog();
        m_config.COpmSetupConfigSave();
    } else if (button == m_pReferenceCancel) {
        handleDialog();
    }
}

// Cancel, or the reference dialog went away otherwise: keep the stored value and follow the
// reading again.
void NerioOpm::handleDialog()
{
    if (!m_pReferenceDialog)
        return;
    puts("m_pReferenceCancel ");
    DelReferenceDialog();
    m_sOpmRef.flag = 0;
}

// Only the dialog on screen counts: one that is already going away has nothing left to cancel.
void NerioOpm::onReferenceRejected()
{
    if (sender() == m_pReferenceDialog)
        handleDialog();
}

void NerioOpm::DelReferenceDialog()
{
    printf("DelReferenceDialog %d\n ", addressAsInt(m_pReferenceDialog));
    if (m_pReferenceDialog)
        m_pReferenceDialog->deleteLater();
    m_pReferenceDialog = 0;
}

// ---------------------------------------------------------------------------------------------
// Restoring the stored setup

void NerioOpm::loadConfig()
{
    const QString references[kWaveLengthCount] = { m_config.mreference850, m_config.mreference1310,
                                                   m_config.mreference1490, m_config.mreference1550,
                                                   m_config.mreference1625 };
    for (int i = 0; i < kWaveLengthCount; ++i)
        FixedText::copy(m_aWaveLengthRef[i], references[i].toLatin1().constData());

    m_pLimits->setChecked(m_config.mPowerLimit == "enable");
    m_pMinimum->setText(m_config.mPowerLimitMin);
    m_pMaximum->setText(m_config.mPowerLimitMax);

    const int wave = waveLengthIndex(m_config.mWaveLenth.toLatin1().constData());
    if (wave >= 0) {
        printf("set wave length %s \n", kWaveLengthTexts[wave]);
        setShareMemWaveLen(WaveLengthType(wave));
        m_pWaveLength->setCurrentIndex(wave);
        showReferenceLabel(wave);
    }

    if (m_config.mlossUnit == "db") {
        m_pLossMeterUnit->setCurrentIndex(0);
        m_pLabelLossLength->setTextColor(Qt::gray);
        m_eLossLengthType = LossLim_dB;
    } else if (m_config.mlossUnit == "km") {
        m_pLossMeterUnit->setCurrentIndex(1);
        m_pLabelLossLength->setTextColor(Qt::white);
        m_eLossLengthType = LossLim_dBkm;
    } else if (m_config.mlossUnit == "mi") {
        m_pLossMeterUnit->setCurrentIndex(2);
        m_pLabelLossLength->setTextColor(Qt::white);
        m_eLossLengthType = LossLim_dBmi;
    }

    printf("m_addr->wavelenthTarget %d \n", isShareMemReady() ? m_addr->wavelenthTarget : -1);

    if (m_config.mTestMode == "PowerMeter") {
        puts("set testMode power meter ");
        m_pTestMode->setCurrentIndex(0);
        m_eTestMode = PowerMeter;
        applyTestModeLayout(PowerMeter);
    } else if (m_config.mTestMode == "LossMeter") {
        puts("set testMode loss meter ");
        m_pTestMode->setCurrentIndex(1);
        m_eTestMode = LossMeter;
        applyTestModeLayout(LossMeter);
    }

    // The length field's own rule, so that dB/km and dB/mi never divide by nothing.
    m_fLength = textToFloat(m_config.mlossLength);
    if (!isValidLength(m_fLength))
        m_fLength = 1.0f;

    const int unit = indexIn(kUnitTexts, m_config.mUnit.toLatin1().constData());
    if (unit >= 0) {
        m_eRusultUnit = RusultUnit(unit);
        FixedText::copy(m_result.limitsUnit, kUnitTexts[unit]);
        if (m_eTestMode == PowerMeter)
            m_pLimits->setText(powerLimitsCaption(m_eRusultUnit));
    } else {
        FixedText::copy(m_result.limitsUnit, "dB");
    }

    setEditSate();
}
