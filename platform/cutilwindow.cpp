#include "cutilwindow.h"

#include "cwidgetstyle.h"

#include <QVBoxLayout>

CUtilWindow::CUtilWindow(QWidget* parent) : CWidget(parent)
{
    setBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::PageBackground));
    const QRect area = CWidgetStyle::getScreenRegion(CWidgetStyle::WorkArea);
    if (parent)
        setGeometry(area);
    else
        resize(area.size());
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
}

void CUtilWindow::setCentralWidget(QWidget* widget)
{
    if (m_central == widget)
        return;
    delete m_central.data();
    m_central = widget;
    if (widget) {
        widget->setParent(this);
        layout()->addWidget(widget);
    }
}

void CUtilWindow::updateWindow(bool repaintNow)
{
    if (m_central)
        m_central->update();
    CWidget::updateWindow(repaintNow);
}

void CUtilWindow::closeWindow() { close(); }
