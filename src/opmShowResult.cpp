#include "opmShowResult.h"

#include "cwidgetstyle.h"
#include "opmMain.h"

#include <cstdio>

COpmShowResultPage::COpmShowResultPage(QWidget* parent) : CWidget(parent)
{
    puts("COpmShowResultPage ");
    m_opmData = CBrovaOpmDataEngine::getSingleInstance();
    setBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::PageBackground));
}

COpmShowResultPage::~COpmShowResultPage() { puts("~COpmShowResultPage "); }
