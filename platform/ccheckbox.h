#ifndef CCHECKBOX_H
#define CCHECKBOX_H

#include <QCheckBox>

class CCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    explicit CCheckBox(QWidget* parent = nullptr);
    explicit CCheckBox(const QString& text, QWidget* parent = nullptr);

    void setForegroundColor(const QColor& color);
    QColor foregroundColor() const;
    void setBorderVisible(bool visible);
    bool borderVisible() const { return m_borderVisible; }

private:
    void applyStyle();

    bool m_borderVisible = true;
};

#endif // CCHECKBOX_H
