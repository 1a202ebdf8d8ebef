#ifndef CMESSAGEBOX_H
#define CMESSAGEBOX_H

#include <QMap>
#include <QMessageBox>

class QLabel;

// Message box of the set: a coloured title bar above the message and the set's green buttons.
class CMessageBox : public QMessageBox
{
    Q_OBJECT
public:
    explicit CMessageBox(QWidget* parent = 0);

    // Shows the box modally over parent and returns the button pressed.
    int information(QWidget* parent, const QString& title, const QString& text,
                    StandardButtons buttons = Ok, StandardButton defaultButton = NoButton);

    void setButtonText(int button, const QString& text);
    void setTextColor(const QColor& color);
    void setTextAlignment(Qt::Alignment alignment);
    void setTitleBackgroundColor(const QColor& color);
    QColor titleBackgroundColor() const { return m_titleBackground; }
    QString title() const;

protected:
    void showEvent(QShowEvent* event);

private:
    void applyStyle();
    void placeTitle();

    QMap<int, QString> m_buttonTexts;
    QColor m_textColor;
    QColor m_titleBackground;
    QLabel* m_title;
};

#endif // CMESSAGEBOX_H
