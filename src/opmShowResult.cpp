#include "opmShowResult.h"

#include "clabel.h"
#include "cpushbutton.h"
#include "cwidgetstyle.h"
#include "opmDataEngine.h"
#include "toolkitValues.h"

#include <QVBoxLayout>

#include <cstdio>
#include <list>

COpmShowResultPage::COpmShowResultPage(QWidget* parent) : CWidget(parent)
{
    puts("COpmShowResultPage ");
    m_opmData = CBrovaOpmDataEngine::getSingleInstance();

    m_pWidget = new CWidget(this);
    m_pWidget->setBorderWidth(0);
    m_pWidget->setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));

    QVBoxLayout* column = new QVBoxLayout(m_pWidget);
    column->setAlignment(Qt::AlignTop);
    column->setSpacing(0);
    column->setContentsMargins(0, 0, 0, 0);

    for (int i = 0; i < kLineCount; ++i) {
        m_pSummary[i] = new CLabel(this);
        m_pSummary[i]->setText(QString());
        m_pSummary[i]->setTextColor(Qt::white);
        m_pSummary[i]->setFixedWidth(640);
        m_pSummary[i]->setFixedHeight(25);
        m_pSummary[i]->setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));
        m_pSummary[i]->setAlignment(Qt::AlignLeft);
        column->addSpacing(2);
        column->addWidget(m_pSummary[i]);
    }

    m_pClear = new CPushButton(this);
    m_pClear->setText(tr("Clear"));
    m_pClear->setStyle(CPushButton::StyleGreen, false);
    column->addWidget(m_pClear, 0, Qt::AlignHCenter);

    connect(m_pClear, SIGNAL(clicked()), this, SLOT(onClearBtnClick()));
}

COpmShowResultPage::~COpmShowResultPage() { puts("~COpmShowResultPage "); }

QString COpmShowResultPage::resultLine(int index, const Result& result)
{
    // The store keeps every text field NUL-ended, so "%s" stays inside its field.
    char line[kLineSize];
    int used = snprintf(line, sizeof line, "Loc #%d , Wave length:%s nm , Mode:%s , Value:%s",
                        index + 1, result.waveLenth, result.testMode, result.value);
    if (result.isLimit && used >= 0 && used < kLineSize - 1)
        snprintf(line + used, sizeof line - size_t(used), " , Pass:%s", result.pass);
    return QString::fromLatin1(line);
}

// The lines follow the store only when the tab is opened; a reading saved meanwhile shows up
// the next time.
void COpmShowResultPage::showEvent(QShowEvent*)
{
    std::list<Result> results;
    m_opmData->getAllResultItem(results);
    int i = 0;
    for (std::list<Result>::const_iterator it = results.begin();
         it != results.end() && i < kLineCount; ++it, ++i)
        m_pSummary[i]->setText(resultLine(i, *it));
}

void COpmShowResultPage::hideEvent(QHideEvent*)
{
    puts("hideEvent ");
    clearLines();
}

void COpmShowResultPage::onClearBtnClick()
{
    clearLines();
    m_opmData->clearAllresultItem();
}

void COpmShowResultPage::clearLines()
{
    for (int i = 0; i < kLineCount; ++i)
        m_pSummary[i]->setText(QString());
}
