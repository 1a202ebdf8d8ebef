#include "cwidgetstyle.h"

#include <QApplication>
#include <QWidget>

QColor CWidgetStyle::getColor(int code)
{
    switch (code) {
    case PageBackground:
        return QColor(0x1d, 0x27, 0x31);
    case DialogBackground:
        return QColor(0xe6, 0xe9, 0xec);
    case ButtonGreen:
        return QColor(0x2b, 0x8a, 0x3e);
    case ButtonGray:
        return QColor(0x6b, 0x75, 0x80);
    case ButtonOrange:
        return QColor(0xe8, 0x7b, 0x1e);
    case ButtonRed:
        return QColor(0xc9, 0x2a, 0x2a);
    case ButtonLightBlue:
        return QColor(0x4d, 0xab, 0xf7);
    case PanelBackground:
        return QColor(0x2c, 0x3a, 0x47);
    case TextOnPage:
        return QColor(Qt::white);
    case TextOnDialog:
        return QColor(0x1d, 0x27, 0x31);
    default:
        return QColor(Qt::black);
    }
}

QRect CWidgetStyle::getScreenRegion(int code)
{
    switch (code) {
    case Screen:
        return QRect(0, 0, 800, 480);
    case TitleBar:
        return QRect(0, 0, 800, 60);
    case StatusBar:
        return QRect(0, 460, 800, 20);
    case SidePanel:
        return QRect(0, 61, 140, 398);
    case WorkArea:
        return QRect(141, 61, 658, 398);
    case KeyPadArea:
        return QRect(271, 61, 398, 398);
    default:
        return QRect();
    }
}

void CWidgetStyle::centerWidget(QWidget* widget, const QWidget* over)
{
    if (!widget)
        return;
    QRect area =
        over ? QRect(over->mapToGlobal(QPoint(0, 0)), over->size()) : getScreenRegion(Screen);
    QRect frame(QPoint(0, 0), widget->size());
    frame.moveCenter(area.center());
    widget->move(widget->isWindow() || !widget->parentWidget()
                     ? frame.topLeft()
                     : widget->parentWidget()->mapFromGlobal(frame.topLeft()));
}

void CWidgetStyle::applyTextFont(QWidget* widget)
{
    QFont f = widget->font();
    f.setPixelSize(kTextPixelSize);
    widget->setFont(f);
}
