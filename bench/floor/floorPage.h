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
