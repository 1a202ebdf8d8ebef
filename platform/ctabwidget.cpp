#include "ctabwidget.h"

#include "cwidgetstyle.h"

CTabWidget::CTabWidget(QWidget* parent)
    : QTabWidget(parent), m_borderWidth(0),
      m_borderColor(CWidgetStyle::getColor(CWidgetStyle::PageBackground))
{
    applyStyle();
}

void CTabWidget::setSize(int width, int height) { resize(width, height); }

void CTabWidget::setBorderWidth(int width)
{
    m_borderWidth = qMax(0, width);
    applyStyle();
}

void CTabWidget::setBorderColor(const QColor& color)
{
    m_borderColor = color;
    applyStyle();
}

void CTabWidget::applyStyle()
{
    const QColor page = CWidgetStyle::getColor(CWidgetStyle::PageBackground);
    const QColor panel = CWidgetStyle::getColor(CWidgetStyle::PanelBackground);
    const QColor green = CWidgetStyle::getColor(CWidgetStyle::ButtonGreen);
    setStyleSheet(
        QString::fromLatin1(
            "CTabWidget::pane { border: %1px solid %2; background-color: %3; top: -1px; }"
            "CTabWidget > QTabBar::tab { color: white; background-color: %4; min-width: 110px;"
            " min-height: 26px; padding: 2px 12px; border-top-left-radius: 4px;"
            " border-top-right-radius: 4px; margin-right: 2px; font-weight: bold; }"
            "CTabWidget > QTabBar::tab:selected { background-color: %5; }")
            .arg(m_borderWidth)
            .arg(m_borderColor.name(), page.name(), panel.name(), green.name()));
}
