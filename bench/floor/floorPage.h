#ifndef FLOORPAGE_H
#define FLOORPAGE_H

#include "opmShareRecord.h"

#include <QWidget>

class QLabel;
class QTimer;

// A bar that only knows where its marker goes; it paints its whole rectangle.
class CFloorBar : public QWidget
{
public:
    explicit CFloorBar(QWidget* parent = nullptr);
    void setValue(double dBm);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_nMarkerX = -1;
};

// The least a Setup tab can do, to measure the real one against: as many widgets as the real
// page, and once a second a copy of the shared record, one formatted value, two labels and a
// painted bar.
class CFloorPage : public QWidget
{
    Q_OBJECT
public:
    // COpmMainPage with its widgets, as opm_bench counts them.
    static constexpr int kDefaultWidgetCount = 59;

    explicit CFloorPage(int widgetCount = kDefaultWidgetCount, QWidget* parent = nullptr);

    // The reading in the Setup tab's own look (a 20-pixel font, right-aligned on a white
    // 300 x 70 label), which costs more to draw than a plain label: to tell the page's own
    // cost from that of the look it must show.
    void showAsSetupTab();

public slots:
    void tick();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void addFillers(int count);

    OpmShareRecord* m_pRecord = nullptr;
    QLabel* m_pValue = nullptr;
    QLabel* m_pWave = nullptr;
    CFloorBar* m_pBar = nullptr;
    QTimer* m_pTimer = nullptr;
};

#endif // FLOORPAGE_H
