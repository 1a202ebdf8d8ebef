#include "cdialog.h"

#include "cwidgetstyle.h"

#include <QPainter>

CDialog::CDialog(QWidget* parent, Qt::WindowFlags flags) : QDialog(parent, flags), m_borderWidth(0)
{ }

void CDialog::setBackgroundColor(const QColor& color)
{
    m_backgroundColor = color;
    update();
}

void CDialog::setBorderColor(const QColor& color)
{
    m_borderColor = color;
    update();
}

void CDialog::setBorderWidth(int width)
{
    m_borderWidth = qMax(0, width);
    update();
}

void CDialog::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (m_backgroundColor.isValid())
        painter.fillRect(rect(), m_backgroundColor);
    if (m_borderWidth > 0 && m_borderColor.isValid()) {
        const int w = m_borderWidth;
        painter.fillRect(QRect(0, 0, width(), w), m_borderColor);
        painter.fillRect(QRect(0, height() - w, width(), w), m_borderColor);
        painter.fillRect(QRect(0, 0, w, height()), m_borderColor);
        painter.fillRect(QRect(width() - w, 0, w, height()), m_borderColor);
    }
}

// The set shows its dialogs in the middle of the screen unless the application placed them.
void CDialog::showEvent(QShowEvent* event)
{
    if (!testAttribute(Qt::WA_Moved))
        CWidgetStyle::centerWidget(this);
    QDialog::showEvent(event);
}
