#include "clabel.h"

#include "cwidgetstyle.h"

#include <QEvent>
#include <QFontMetrics>

CLabel::CLabel(QWidget* parent) : QLabel(parent), m_autoStyle(false), m_basePixelSize(0)
{
    CWidgetStyle::applyTextFont(this);
}

CLabel::CLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent), m_autoStyle(false), m_basePixelSize(0)
{
    CWidgetStyle::applyTextFont(this);
}

void CLabel::setTextColor(const QColor& color)
{
    QPalette pal = palette();
    pal.setColor(QPalette::WindowText, color);
    pal.setColor(QPalette::Text, color);
    setPalette(pal);
}

QColor CLabel::textColor() const { return palette().color(QPalette::WindowText); }

void CLabel::setBackgroundColor(const QColor& color)
{
    QPalette pal = palette();
    pal.setColor(QPalette::Window, color);
    setPalette(pal);
    setAutoFillBackground(true);
}

QColor CLabel::backgroundColor() const { return palette().color(QPalette::Window); }

void CLabel::setTextSize(int pixelSize)
{
    QFont f = font();
    f.setPixelSize(pixelSize);
    setFont(f);
    m_basePixelSize = pixelSize;
}

void CLabel::setWrapMode(WrapMode mode) { setWordWrap(mode == WordWrap); }

void CLabel::setAutoStyleEnabled(bool on)
{
    m_autoStyle = on;
    fitText();
}

void CLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    fitText();
}

void CLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ParentChange)
        fitText();
}

void CLabel::fitText()
{
    if (!m_autoStyle || text().isEmpty() || width() <= 0 || height() <= 0)
        return;
    QFont f = font();
    if (m_basePixelSize <= 0)
        m_basePixelSize = f.pixelSize() > 0 ? f.pixelSize() : QFontInfo(f).pixelSize();
    // A text that breaks its own lines keeps them: each must fit the width unwrapped.
    const QRect box = contentsRect();
    const bool ownLines = text().contains(QLatin1Char('\n'));
    const int flags = int(alignment()) | (wordWrap() ? Qt::TextWordWrap : 0);
    for (int size = m_basePixelSize; size >= 8; --size) {
        f.setPixelSize(size);
        const QFontMetrics metrics(f);
        const int widest =
            ownLines ? metrics.boundingRect(QRect(0, 0, 1 << 20, 1 << 20), 0, text()).width() : 0;
        const int tallest = metrics.boundingRect(box, flags, text()).height();
        if (widest <= box.width() && tallest <= box.height())
            break;
    }
    if (f != font())
        QLabel::setFont(f);
}
