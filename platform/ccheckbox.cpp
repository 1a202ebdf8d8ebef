#include "ccheckbox.h"

#include "cwidgetstyle.h"

CCheckBox::CCheckBox(QWidget* parent) : QCheckBox(parent), m_borderVisible(true)
{
    CWidgetStyle::applyTextFont(this);
    applyStyle();
}

CCheckBox::CCheckBox(const QString& text, QWidget* parent)
    : QCheckBox(text, parent), m_borderVisible(true)
{
    CWidgetStyle::applyTextFont(this);
    applyStyle();
}

void CCheckBox::setForegroundColor(const QColor& color)
{
    QPalette pal = palette();
    pal.setColor(QPalette::WindowText, color);
    pal.setColor(QPalette::ButtonText, color);
    setPalette(pal);
    applyStyle();
}

QColor CCheckBox::foregroundColor() const { return palette().color(QPalette::WindowText); }

void CCheckBox::setBorderVisible(bool visible)
{
    m_borderVisible = visible;
    applyStyle();
}

void CCheckBox::applyStyle()
{
    setStyleSheet(QString::fromLatin1("CCheckBox { color: %1; border: %2; min-height: 30px; }"
                                      "CCheckBox::indicator { width: 20px; height: 20px; }")
                      .arg(foregroundColor().name(),
                           m_borderVisible ? QString::fromLatin1("1px solid #9aa5b1")
                                           : QString::fromLatin1("none")));
}
