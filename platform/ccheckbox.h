#ifndef CCHECKBOX_H
#define CCHECKBOX_H

#include <QCheckBox>

class CCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    explicit CCheckBox(QWidget* parent = 0);
    explicit CCheckBox(const QString& text, QWidget* parent = 0);

    void setForegroundColor(const QColor& color);
    QColor foregroundColor() const;
    void setBorderVisible(bool visible);
    bool borderVisible() const { return m_borderVisible; }

private:
    void applyStyle();

    bool m_borderVisible;
};

#endif // CCHECKBOX_H
