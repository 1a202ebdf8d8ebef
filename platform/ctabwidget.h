#ifndef CTABWIDGET_H
#define CTABWIDGET_H

#include <QColor>
#include <QTabWidget>

class CTabWidget : public QTabWidget
{
    Q_OBJECT
public:
    explicit CTabWidget(QWidget* parent = 0);

    virtual void setSize(int width, int height);
    void setBorderWidth(int width);
    void setBorderColor(const QColor& color);

signals:
    void requestToClose();

private:
    void applyStyle();

    int m_borderWidth;
    QColor m_borderColor;
};

#endif // CTABWIDGET_H
