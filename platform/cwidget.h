#ifndef CWIDGET_H
#define CWIDGET_H

#include <QColor>
#include <QWidget>

// Base of every page of the set's applications. The virtual operations below follow those of
// QWidget in this order; applications override them, the shell calls them through the table.
class CWidget : public QWidget
{
    Q_OBJECT
public:
    explicit CWidget(QWidget* parent = 0, Qt::WindowFlags flags = Qt::WindowFlags());
    ~CWidget();

    virtual int type() const;
    virtual void apply();
    virtual bool initialize();
    virtual void load(const QString& file);
    virtual void save(const QString& file);
    virtual void updateParm(void* parm, unsigned int size);
    virtual void setSize(int width, int height);
    virtual void setSize(const QSize& size);
    virtual void setFixedSize(int width, int height);
    virtual void setWidth(int width);
    virtual void setHeight(int height);
    virtual void clientWndStateChanged(int state);
    virtual void translate();
    virtual void updateWidgetStyle();
    virtual void updateWindow(bool repaintNow);
    virtual void closeWindow();
    virtual void setArrowKeyFocus(bool on);
    virtual bool hasArrowKeyFocus() const;

    using QWidget::setFixedSize;

    void setBackgroundColor(const QColor& color);
    void setBorderColor(const QColor& color);
    void setBorderWidth(int width);
    QColor backgroundColor() const { return m_backgroundColor; }
    QColor borderColor() const { return m_borderColor; }
    int borderWidth() const { return m_borderWidth; }

signals:
    void requestToClose();

protected:
    void paintEvent(QPaintEvent* event);
    // A language change retranslates through translate(), as the set's toolkit does.
    void changeEvent(QEvent* event);

private:
    QColor m_backgroundColor;
    QColor m_borderColor;
    int m_borderWidth;
    bool m_arrowKeyFocus;
};

#endif // CWIDGET_H
