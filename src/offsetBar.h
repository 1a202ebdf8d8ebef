#ifndef OFFSETBAR_H
#define OFFSETBAR_H

#include "cwidget.h"

#include <QString>

// Gauge that places a value between a lower and an upper limit: green in range, pink outside.
class OffsetBar : public CWidget
{
    Q_OBJECT
public:
    explicit OffsetBar(QWidget* parent = 0);
    ~OffsetBar();

    void setRangedOffset(double lowwater, double highwater, double offset);
    void setRangedOffset(int lowwater, int highwater, int offset);
    void clear();

    // Left edge of the value marker, or -1 when no marker is drawn.
    int markerX() const;
    int percent() const { return m_nPercentVal; }
    QString minLabel() const { return m_sMinValue; }
    QString maxLabel() const { return m_sMaxValue; }

protected:
    void paintEvent(QPaintEvent* event);

private:
    static int percentOf(double offset, double lowwater, double highwater);
    int pixelsBeyond(double from, double to) const;
    bool setLimitLabels(double lowwater, double highwater);

    int m_nStartX;
    int m_nStartY;
    int m_nWidth;
    int m_nHeight;
    int m_nPercentVal;
    QString m_sMaxValue;
    QString m_sMinValue;
    double m_fMaxValue;
    double m_fMinValue;
    double m_fValueRage;
    double m_fOffsetValue;
    // The labels still hold the constructor's texts until the first update.
    bool m_bLabelsFromLimits;
};

#endif // OFFSETBAR_H
