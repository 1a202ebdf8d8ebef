#ifndef CDIALOG_H
#define CDIALOG_H

#include <QColor>
#include <QDialog>

class CDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CDialog(QWidget* parent = 0, Qt::WindowFlags flags = Qt::WindowFlags());

    void setBackgroundColor(const QColor& color);
    void setBorderColor(const QColor& color);
    void setBorderWidth(int width);
    QColor backgroundColor() const { return m_backgroundColor; }
    QColor borderColor() const { return m_borderColor; }
    int borderWidth() const { return m_borderWidth; }

protected:
    void paintEvent(QPaintEvent* event);
    void showEvent(QShowEvent* event);

private:
    QColor m_backgroundColor;
    QColor m_borderColor;
    int m_borderWidth;
};

#endif // CDIALOG_H
