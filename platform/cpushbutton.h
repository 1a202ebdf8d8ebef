#ifndef CPUSHBUTTON_H
#define CPUSHBUTTON_H

#include <QPushButton>

class CPushButton : public QPushButton
{
    Q_OBJECT
public:
    enum ButtonStyle {
        StyleGray = 0,
        StyleGreen = 1,
        StyleOrange = 2,
        StyleRed = 3,
        StyleLightBlue = 4
    };

    explicit CPushButton(QWidget* parent = 0);
    explicit CPushButton(const QString& text, QWidget* parent = 0);

    using QPushButton::setStyle;
    // A small button keeps the set's standard height but takes only the width of its caption.
    void setStyle(ButtonStyle style, bool small);
    ButtonStyle buttonStyle() const { return m_style; }
    void setBackgroundColor(const QColor& color);

private:
    void applyStyle();

    ButtonStyle m_style;
    bool m_small;
};

#endif // CPUSHBUTTON_H
