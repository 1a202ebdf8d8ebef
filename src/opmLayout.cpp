#include "ccheckbox.h"
#include "ccombobox.h"
#include "clabel.h"
#include "clineedit.h"
#include "cpushbutton.h"
#include "cwidgetstyle.h"
#include "offsetBar.h"
#include "opm.h"
#include "opmWidgets.h"
#include "toolkitValues.h"

#include <QBoxLayout>

// The Setup tab's widgets, row by row as they stand on the screen, and their texts.

namespace {

const Qt::Alignment kRightCentred = Qt::AlignRight | Qt::AlignCenter;

// The page's building blocks: caption labels, selectors, buttons and numeric fields all share
// one look each.
CLabel* newCaption(const QString& text, QWidget* parent)
{
    CLabel* label = new CLabel(text, parent);
    label->setFixedWidth(100);
    label->setTextColor(Qt::white);
    label->setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));
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
    edit->setSKPType(OpmToolkit::kNumberKeyPad);
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

// A row of a caption and its control, each after its space; the rest stretches.
void addPair(QHBoxLayout* row, int before, QWidget* caption, int between, QWidget* control)
{
    row->addSpacing(before);
    row->addWidget(caption);
    row->addSpacing(between);
    row->addWidget(control);
}

QStringList testModeItems()
{
    return QStringList() << QObject::tr("Power Meter(OPM)") << QObject::tr("Loss Meter");
}

} // namespace

bool NerioOpm::initialize()
{
    setWindowTitle(QObject::tr("Optical Power Meter"));

    QLayout* waveModeRow = crtWaveModeRow();
    QLayout* summaryRow = crtSummaryRow();
    QLayout* readingRow = crtReadingRow();
    QVBoxLayout* limits = newBox<QVBoxLayout>(10);
    limits->addLayout(crtLimitsRow());
    limits->addLayout(crtLimitValuesRow());

    // Placed by hand, on top of the reading panel, whatever the layouts do.
    m_pOffsetBarResult = new OffsetBar(this);
    m_pOffsetBarResult->move(205, 200);

    QVBoxLayout* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->addSpacing(20);
    page->addLayout(waveModeRow);
    page->addSpacing(5);
    page->addLayout(summaryRow);
    page->addSpacing(5);
    page->addLayout(readingRow);
    page->addSpacing(15);
    page->addLayout(limits);
    page->addStretch();
    setLayout(page);
    return false;
}

// Wavelength and test mode.
QLayout* NerioOpm::crtWaveModeRow()
{
    pWaveLength = newCaption(QObject::tr("Wavelength"), this);
    m_pWaveLength = newSelector(QStringList() << "850 nm MMF"
                                              << "1310 nm SMF"
                                              << "1490 nm SMF"
                                              << "1550 nm SMF"
                                              << "1625 nm SMF",
                                this);
    pTestMode = newCaption(QObject::tr("Test Mode"), this);
    m_pTestMode = newSelector(testModeItems(), this);
    QHBoxLayout* row = newBox<QHBoxLayout>(0);
    addPair(row, 35, pWaveLength, 5, m_pWaveLength);
    addPair(row, 10, pTestMode, 5, m_pTestMode);
    row->addStretch();
    return row;
}

// The last saved reading.
QLayout* NerioOpm::crtSummaryRow()
{
    m_pSummary = new CLabel(this);
    m_pSummary->setFixedSize(640, 20);
    m_pSummary->setTextColor(Qt::white);
    m_pSummary->setTextSize(10);
    m_pSummary->setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));
    m_pSummary->setAlignment(Qt::AlignLeft);
    QHBoxLayout* row = new QHBoxLayout;
    row->setAlignment(Qt::AlignLeft);
    row->setContentsMargins(0, 0, 0, 0);
    row->addSpacing(10);
    row->addWidget(m_pSummary);
    return row;
}

// Hold, Save and Reference; the reading panel; the three units.
QLayout* NerioOpm::crtReadingRow()
{
    m_pHold = newButton(QObject::tr("Hold"), this);
    m_pSave = newButton(QObject::tr("Save"), this);
    m_pReference = newButton(QObject::tr("Reference"), this);
    m_pReference->hide();
    m_strdBmShown = tr("dBm");
    m_pdBm = newButton(m_strdBmShown, this);
    m_pmW = newButton(tr("mW"), this);
    m_puW = newButton(tr("uW"), this);
    QHBoxLayout* row = newBox<QHBoxLayout>(0);
    row->addSpacing(30);
    row->addLayout(newColumn(20, m_pHold, m_pSave, m_pReference));
    row->addSpacing(30);
    row->addLayout(newColumn(0, CrtOpmInfoWidget()));
    row->addSpacing(30);
    row->addLayout(newColumn(20, m_pdBm, m_pmW, m_puW));
    row->addStretch();
    return row;
}

// The limits switch and the loss unit; below them the fibre length.
QLayout* NerioOpm::crtLimitsRow()
{
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
    QHBoxLayout* switchRow = newBox<QHBoxLayout>(0);
    switchRow->addSpacing(20);
    switchRow->addWidget(m_pLimits);
    switchRow->setSpacing(5);
    switchRow->addWidget(m_pLossMeterUnit);
    switchRow->addStretch();
    QHBoxLayout* lengthRow = newBox<QHBoxLayout>(0);
    addPair(lengthRow, 7, m_pLabelLossLength, 5, m_pLossLength);
    lengthRow->addStretch();
    QHBoxLayout* rows = new QHBoxLayout;
    rows->addLayout(switchRow);
    rows->addLayout(lengthRow);
    return rows;
}

// Minimum and maximum.
QLayout* NerioOpm::crtLimitValuesRow()
{
    pMinimum = newCaption(QObject::tr("Minimum"), this);
    m_pMinimum = newNumberEdit(tr("-60"), this);
    m_pMinimum->setRange(-60, 10);
    pMaximum = newCaption(QObject::tr("Maximum"), this);
    m_pMaximum = newNumberEdit(tr("10"), this);
    m_pMaximum->setRange(-60, 10);
    QHBoxLayout* row = newBox<QHBoxLayout>(0);
    addPair(row, 40, pMinimum, 5, m_pMinimum);
    addPair(row, 18, pMaximum, 5, m_pMaximum);
    row->addStretch();
    return row;
}

// The reading panel: its title and the reference line above the reading.
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

    QHBoxLayout* titleRow = newBox<QHBoxLayout>(0);
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
    m_pTestMode->addItems(testModeItems());
    m_pTestMode->setCurrentIndex(mode);

    m_pHold->setText(QObject::tr("Hold"));
    m_pReference->setText(QObject::tr("Reference"));
    m_pLabelLossLength->setText(QObject::tr("Length (km)"));
    m_pSave->setText(QObject::tr("Save"));

    m_pLimits->setText(m_eTestMode == LossMeter ? QObject::tr("Loss Limits")
                                                : OpmPage::powerLimitsCaption(m_eRusultUnit));

    pMinimum->setText(QObject::tr("Minimum"));
    pMaximum->setText(QObject::tr("Maximum"));

    if (l_pTitle)
        l_pTitle->setText(QObject::tr("File Name"));
    if (pFileName)
        pFileName->setText(QObject::tr("File Name:"));
}
