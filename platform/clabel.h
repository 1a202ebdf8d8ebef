#ifndef CLABEL_H
#define CLABEL_H

#include <QLabel>

class CLabel : public QLabel
{
    Q_OBJECT
public:
    enum WrapMode { NoWrap = 0, WordWrap = 1 };

    explicit CLabel(QWidget* parent = 0);
    explicit CLabel(const QString& text, QWidget* parent = 0);

    void setTextColor(const QColor& color);
    QColor textColor() const;
    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const;
    void setTextSize(int pixelSize);
    void setWrapMode(WrapMode mode);
    // Lets the label shrink its font so that a long text stays inside the fixed box.
    void setAutoStyleEnabled(bool on);
    bool autoStyleEnabled() const { return m_autoStyle; }

protected:
    void resizeEvent(QResizeEvent* event);
    void changeEvent(QEvent* event);

private:
    void fitText();

    bool m_autoStyle;
    int m_basePixelSize;
};

#endif // CLABEL_H
