#include "clabel.h"

#include <QEvent>
#include <QFontMetrics>

CLabel::CLabel(QWidget* parent) : QLabel(parent) { }

CLabel::CLabel(const QString& text, QWidget* parent) : QLabel(text, parent) { }

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
    const int flags = int(alignment()) | (wordWrap() ? Qt::TextWordWrap : 0);
    for (int size = m_basePixelSize; size >= 8; --size) {
        f.setPixelSize(size);
        const QRect needed
                = QFontMetrics(f).boundingRect(contentsRect(), flags, text());
        if (needed.height() <= contentsRect().height() && needed.width() <= contentsRect().width())
            break;
    }
    if (f != font())
        QLabel::setFont(f);
}
