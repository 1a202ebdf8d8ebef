#include "floorPage.h"

#include <QFont>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QTimer>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const int kBarWidth = 255;
const int kBarHeight = 40;
const int kFillerColumns = 6;
const int kFillerWidth = 100;
const int kFillerHeight = 20;

} // namespace

CFloorBar::CFloorBar(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFixedSize(kBarWidth, kBarHeight);
}

void CFloorBar::setValue(double dBm)
{
    const double share = std::fmin(1.0, std::fmax(0.0, (dBm + 60.0) / 70.0));
    const int x = std::isnan(share) ? 0 : int(share * (kBarWidth - 5));
    if (x == m_nMarkerX)
        return;
    m_nMarkerX = x;
    update();
}

void CFloorBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    painter.fillRect(QRect(0, 0, kBarWidth, 25), QColor(204, 255, 153));
    if (m_nMarkerX >= 0)
        painter.fillRect(QRect(m_nMarkerX, 1, 5, 24), Qt::blue);
}

CFloorPage::CFloorPage(int widgetCount, QWidget* parent) : QWidget(parent)
{
    m_pRecord = reinterpret_cast<OpmShareRecord*>(IpcGetAddr(Getkey()));
    m_pValue = new QLabel(this);
    m_pValue->setGeometry(200, 250, 300, 40);
    m_pWave = new QLabel(this);
    m_pWave->setGeometry(200, 290, 300, 20);
    m_pBar = new CFloorBar(this);
    m_pBar->move(205, 320);
    // Above the live widgets, so that no tick repaints a caption.
    addFillers(widgetCount - 4); // the page, the two labels and the bar
    m_pTimer = new QTimer(this);
    connect(m_pTimer, SIGNAL(timeout()), this, SLOT(tick()));
}

void CFloorPage::showAsSetupTab()
{
    m_pValue->setGeometry(200, 250, 300, 70);
    QFont font = m_pValue->font();
    font.setPixelSize(20);
    m_pValue->setFont(font);
    QPalette palette = m_pValue->palette();
    palette.setColor(QPalette::Window, Qt::white);
    m_pValue->setPalette(palette);
    m_pValue->setAutoFillBackground(true);
    m_pValue->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_pWave->move(200, 225);
}

void CFloorPage::addFillers(int count)
{
    for (int i = 0; i < count; ++i) {
        auto* label = new QLabel(QString::fromLatin1("Caption %1").arg(i), this);
        const int column = i % kFillerColumns;
        const int row = i / kFillerColumns;
        label->setGeometry(column * kFillerWidth, row * kFillerHeight, kFillerWidth, kFillerHeight);
    }
}

void CFloorPage::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_pTimer->start(1000);
}

void CFloorPage::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_pTimer->stop();
}

void CFloorPage::tick()
{
    if (!isShareMemAttached(m_pRecord))
        return;
    OpmShareRecord copy;
    std::memcpy(&copy, m_pRecord, sizeof copy);
    copy.wavelenth[sizeof copy.wavelenth - 1] = '\0';
    copy.value[sizeof copy.value - 1] = '\0';
    const double dBm = std::atof(copy.value);
    char text[32];
    std::snprintf(text, sizeof text, "%.3f dBm", dBm);
    m_pValue->setText(QString::fromLatin1(text));
    m_pWave->setText(QString::fromLatin1(copy.wavelenth));
    m_pBar->setValue(dBm);
}
