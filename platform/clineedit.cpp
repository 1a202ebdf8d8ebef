#include "clineedit.h"

#include "ckeypadfactory.h"
#include "cwidgetstyle.h"

#include <QMouseEvent>

CLineEdit::CLineEdit(QWidget* parent) : QLineEdit(parent), m_keyPadType(-1), m_lower(0), m_upper(0)
{
    CWidgetStyle::applyTextFont(this);
    setMinimumHeight(30);
}

CLineEdit::CLineEdit(const QString& text, QWidget* parent)
    : QLineEdit(text, parent), m_keyPadType(-1), m_lower(0), m_upper(0)
{
    CWidgetStyle::applyTextFont(this);
    setMinimumHeight(30);
}

void CLineEdit::setSKPType(int type) { m_keyPadType = type; }

void CLineEdit::setRange(int lower, int upper)
{
    m_lower = lower;
    m_upper = upper;
}

bool CLineEdit::openKeyPad()
{
    QString entry;
    if (!CKeyPadFactory::runKeyPad(m_title, text(), m_keyPadType, m_lower, m_upper, this, &entry))
        return false;
    setText(entry);
    emit textEdited(entry);
    return true;
}

void CLineEdit::mousePressEvent(QMouseEvent* event)
{
    if (m_keyPadType < 0 || !isEnabled() || isReadOnly() || event->button() != Qt::LeftButton) {
        QLineEdit::mousePressEvent(event);
        return;
    }
    event->accept();
    openKeyPad();
}
