#include "cdialog.h"
#include "clabel.h"
#include "cpushbutton.h"
#include "cwidgetstyle.h"
#include "fixedText.h"
#include "opm.h"
#include "toolkitValues.h"

#include <QBoxLayout>

#include <cstdio>
#include <cstring>

#include <stdint.h>

// The reference-level dialog: the current reading becomes the stored reference of the current
// wavelength (Set), or the stored one stays (Cancel).

namespace {

int addressAsInt(const void* p) { return static_cast<int>(reinterpret_cast<intptr_t>(p)); }

} // namespace

void NerioOpm::startReference()
{
    // A second press while the dialog is open: the open one stays, Set and Cancel answer it.
    if (m_pReferenceDialog) {
        m_pReferenceDialog->raise();
        m_pReferenceDialog->activateWindow();
        return;
    }
    CrtReferenceDialog();
    m_sOpmRef.flag = 1;
    showReferenceTexts();
    m_pReferenceDialog->show();
}

// The reading the reference would take, and the stored one that Cancel keeps.
void NerioOpm::showReferenceTexts()
{
    char tmp[256];
    std::memset(tmp, 0, sizeof tmp);
    snprintf(tmp, sizeof tmp, "Current Optical Level:%s %s at %s nm", Opm.value, Opm.unit,
             Opm.wavelenth);
    m_pRefLabel2->setText(QString::fromLatin1(tmp));
    std::memset(tmp, 0, sizeof tmp);
    snprintf(
        tmp, sizeof tmp,
        "Or press Cancel instead if you prefer to keep the previously stored value of %.*s dBm",
        int(FixedText::length(m_aWaveLengthRef[m_eWaveLength])), m_aWaveLengthRef[m_eWaveLength]);
    m_pRefLabel3->setText(QString::fromLatin1(tmp));
}

CDialog* NerioOpm::CrtReferenceDialog()
{
    m_pReferenceDialog = new CDialog(this);
    m_pReferenceDialog->setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    m_pReferenceDialog->setWindowModality(Qt::ApplicationModal);
    m_pReferenceDialog->setBorderWidth(5);
    m_pReferenceDialog->setBorderColor(Qt::gray);
    m_pReferenceDialog->setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kDialogColour));
    m_pReferenceDialog->resize(385, 250);
    const int labelWidth = m_pReferenceDialog->width() + 10;

    m_pRefTitle = crtReferenceTitle();
    m_pRefLabel1 = crtReferenceText(
        QObject::tr("Please use a short and clean optical patch cord to connect the\nLaser Light "
                    "Source directly to the OPM port on this unit,\nto set the output reference "
                    "level.\nPress Set to store and use the current reading."),
        100, labelWidth);
    m_pRefLabel2 = new CLabel(tr(""), m_pReferenceDialog);
    m_pRefLabel2->setAlignment(Qt::AlignCenter);
    m_pRefLabel2->setBackgroundColor(Qt::white);
    m_pRefLabel2->setFixedWidth(labelWidth);
    m_pRefLabel3 = crtReferenceText(tr(""), 50, labelWidth);
    m_pReferenceSet = crtReferenceButton(QObject::tr("Set"));
    m_pReferenceCancel = crtReferenceButton(QObject::tr("Cancel"));
    crtReferenceLayout();

    connect(m_pReferenceSet, SIGNAL(clicked()), this, SLOT(onReferBtnChanged()));
    connect(m_pReferenceCancel, SIGNAL(clicked()), this, SLOT(onReferBtnChanged()));
    // Escape or a close of the toolkit's dialog counts as Cancel.
    connect(m_pReferenceDialog, SIGNAL(rejected()), this, SLOT(onReferenceRejected()));

    printf("CrtReferenceDialog %d\n ", addressAsInt(m_pReferenceDialog));
    return m_pReferenceDialog;
}

CLabel* NerioOpm::crtReferenceTitle()
{
    CLabel* title = new CLabel(QObject::tr("Reference Power Level"), m_pReferenceDialog);
    title->setBackgroundColor(Qt::green);
    title->setTextColor(Qt::white);
    title->setFixedHeight(35);
    title->setAlignment(Qt::AlignCenter);
    QFont titleFont;
    titleFont.setBold(true);
    titleFont.setPixelSize(20);
    title->setFont(titleFont);
    return title;
}

// A text of the dialog that wraps at word ends and shrinks to fit its box.
CLabel* NerioOpm::crtReferenceText(const QString& text, int height, int width)
{
    CLabel* label = new CLabel(text, m_pReferenceDialog);
    label->setWrapMode(CLabel::WrapMode(OpmToolkit::kWrapWords));
    label->setAutoStyleEnabled(true);
    label->setFixedHeight(height);
    label->setBackgroundColor(Qt::white);
    label->setFixedWidth(width);
    return label;
}

CPushButton* NerioOpm::crtReferenceButton(const QString& text)
{
    CPushButton* button = new CPushButton(text, m_pReferenceDialog);
    button->setStyle(CPushButton::StyleGreen, false);
    button->setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kDialogColour));
    return button;
}

// The title and the three texts from the top; Set and Cancel side by side at the bottom.
QLayout* NerioOpm::crtReferenceLayout()
{
    QHBoxLayout* buttons = new QHBoxLayout;
    buttons->addWidget(m_pReferenceSet);
    buttons->addWidget(m_pReferenceCancel);

    QVBoxLayout* column = new QVBoxLayout(m_pReferenceDialog);
    column->setContentsMargins(5, 5, 5, 5);
    column->setSpacing(0);
    column->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    column->addWidget(m_pRefTitle);
    column->addWidget(m_pRefLabel1);
    column->addWidget(m_pRefLabel2);
    column->addWidget(m_pRefLabel3);
    column->addStretch(1);
    column->addLayout(buttons);
    return column;
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
        saveReferences();
        DelReferenceDialog();
        m_config.COpmSetupConfigSave();
    } else if (button == m_pReferenceCancel) {
        handleDialog();
    }
}

void NerioOpm::saveReferences()
{
    m_config.mreference850 = QString::fromLatin1(m_aWaveLengthRef[Type_850nmMMF]);
    m_config.mreference1310 = QString::fromLatin1(m_aWaveLengthRef[Type_1310nmSMF]);
    m_config.mreference1490 = QString::fromLatin1(m_aWaveLengthRef[Type_1490nmSMF]);
    m_config.mreference1550 = QString::fromLatin1(m_aWaveLengthRef[Type_1550nmSMF]);
    m_config.mreference1625 = QString::fromLatin1(m_aWaveLengthRef[Type_1625nmSMF]);
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
