#ifndef CLINEEDIT_H
#define CLINEEDIT_H

#include <QLineEdit>

// Edit field of the set. With a keypad type set, touching the field opens the on-screen keypad;
// an entry confirmed there replaces the text and is announced once through textEdited().
class CLineEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit CLineEdit(QWidget* parent = 0);
    explicit CLineEdit(const QString& text, QWidget* parent = 0);

    void setSKPType(int type);
    int skpType() const { return m_keyPadType; }
    void setRange(int lower, int upper);
    int rangeLower() const { return m_lower; }
    int rangeUpper() const { return m_upper; }
    void setKeyPadTitle(const QString& title) { m_title = title; }

    // Opens the keypad as a touch would; returns whether the entry was confirmed.
    bool openKeyPad();

protected:
    void mousePressEvent(QMouseEvent* event);

private:
    int m_keyPadType;
    int m_lower;
    int m_upper;
    QString m_title;
};

#endif // CLINEEDIT_H
