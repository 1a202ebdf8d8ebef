#include "ccombobox.h"

#include "cwidgetstyle.h"

CComboBox::CComboBox(QWidget* parent) : QComboBox(parent)
{
    CWidgetStyle::applyTextFont(this);
    setMinimumHeight(30);
    setStyleSheet(
        QString::fromLatin1("CComboBox { background-color: white; color: black;"
                            " border: 1px solid #9aa5b1; border-radius: 3px; padding-left: 6px; }"
                            "CComboBox:disabled { background-color: #cbd2d9; color: #616e7c; }"));
}
