#include "cpushbutton.h"

#include "cwidgetstyle.h"

namespace {

int colorCodeOf(CPushButton::ButtonStyle style)
{
    switch (style) {
    case CPushButton::StyleGreen:
        return CWidgetStyle::ButtonGreen;
    case CPushButton::StyleOrange:
        return CWidgetStyle::ButtonOrange;
    case CPushButton::StyleRed:
        return CWidgetStyle::ButtonRed;
    case CPushButton::StyleLightBlue:
        return CWidgetStyle::ButtonLightBlue;
    case CPushButton::StyleGray:
        break;
    }
    return CWidgetStyle::ButtonGray;
}

} // namespace

CPushButton::CPushButton(QWidget* parent) : QPushButton(parent), m_style(StyleGray), m_small(false)
{
    CWidgetStyle::applyTextFont(this);
    applyStyle();
}

CPushButton::CPushButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent), m_style(StyleGray), m_small(false)
{
    CWidgetStyle::applyTextFont(this);
    applyStyle();
}

void CPushButton::setStyle(ButtonStyle style, bool small)
{
    m_style = style;
    m_small = small;
    applyStyle();
}

void CPushButton::setBackgroundColor(const QColor& color)
{
    QPalette pal = palette();
    pal.setColor(QPalette::Window, color);
    setPalette(pal);
    setAutoFillBackground(true);
}

void CPushButton::applyStyle()
{
    const QColor face = CWidgetStyle::getColor(colorCodeOf(m_style));
    setStyleSheet(
        QString::fromLatin1(
            "CPushButton { color: white; background-color: %1; border: 2px solid %2;"
            " border-radius: 4px; font-weight: bold; min-height: 32px; min-width: %3px;"
            " padding: 0 10px; }"
            "CPushButton:pressed { background-color: %2; }"
            "CPushButton:disabled { color: #c8ccd0; background-color: %4; border-color: %4; }")
            .arg(face.name(), face.darker(140).name(), QString::number(m_small ? 40 : 90),
                 CWidgetStyle::getColor(CWidgetStyle::ButtonGray).name()));
}
