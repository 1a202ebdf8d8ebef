#include "cwidget.h"

#include <QEvent>
#include <QPainter>

CWidget::CWidget(QWidget* parent, Qt::WindowFlags flags)
    : QWidget(parent, flags), m_borderWidth(0), m_arrowKeyFocus(false)
{ }

CWidget::~CWidget() { }

int CWidget::type() const { return 0; }
void CWidget::apply() { }
bool CWidget::initialize() { return true; }
void CWidget::load(const QString&) { }
void CWidget::save(const QString&) { }
void CWidget::updateParm(void*, unsigned int) { }
void CWidget::setSize(int width, int height) { resize(width, height); }
void CWidget::setSize(const QSize& size) { resize(size); }
void CWidget::setFixedSize(int width, int height) { QWidget::setFixedSize(width, height); }
void CWidget::setWidth(int width) { resize(width, height()); }
void CWidget::setHeight(int height) { resize(width(), height); }
void CWidget::clientWndStateChanged(int) { }
void CWidget::translate() { }

void CWidget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        translate();
}
void CWidget::updateWidgetStyle() { update(); }

void CWidget::updateWindow(bool repaintNow)
{
    if (repaintNow)
        repaint();
    else
        update();
}

void CWidget::closeWindow() { close(); }
void CWidget::setArrowKeyFocus(bool on) { m_arrowKeyFocus = on; }
bool CWidget::hasArrowKeyFocus() const { return m_arrowKeyFocus; }

void CWidget::setBackgroundColor(const QColor& color)
{
    m_backgroundColor = color;
    update();
}

void CWidget::setBorderColor(const QColor& color)
{
    m_borderColor = color;
    update();
}

void CWidget::setBorderWidth(int width)
{
    m_borderWidth = qMax(0, width);
    update();
}

void CWidget::paintEvent(QPaintEvent*)
{
    if (!m_backgroundColor.isValid() && m_borderWidth == 0)
        return;
    QPainter painter(this);
    if (m_backgroundColor.isValid())
        painter.fillRect(rect(), m_backgroundColor);
    if (m_borderWidth > 0 && m_borderColor.isValid()) {
        QPen pen(m_borderColor, m_borderWidth);
        pen.setJoinStyle(Qt::MiterJoin);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        const int inset = m_borderWidth / 2;
        painter.drawRect(rect().adjusted(inset, inset, -inset - 1 + m_borderWidth % 2,
                                         -inset - 1 + m_borderWidth % 2));
    }
}
