#ifndef CWIDGETSTYLE_H
#define CWIDGETSTYLE_H

#include <QColor>
#include <QRect>

class QWidget;

// Palette and screen geometry of the set: an 800 x 480 touch screen with a title bar on top,
// a side panel of keys on the left and the application's work area beside it.
class CWidgetStyle
{
public:
    enum ColorCode {
        PageBackground = 0,
        DialogBackground = 1,
        ButtonGreen = 2,
        ButtonGray = 3,
        ButtonOrange = 4,
        ButtonRed = 5,
        ButtonLightBlue = 6,
        PanelBackground = 7,
        TextOnPage = 8,
        TextOnDialog = 9
    };

    enum ScreenRegion {
        Screen = 0,
        TitleBar = 1,
        StatusBar = 2,
        SidePanel = 3,
        WorkArea = 4,
        KeyPadArea = 5
    };

    static QColor getColor(int code);
    static QRect getScreenRegion(int code);
    static void centerWidget(QWidget* widget, const QWidget* over = 0);
    // The set's compact text size, so that captions fit the fixed widths of its pages.
    enum { kTextPixelSize = 14 };
    static void applyTextFont(QWidget* widget);
};

#endif // CWIDGETSTYLE_H
