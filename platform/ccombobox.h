#ifndef CCOMBOBOX_H
#define CCOMBOBOX_H

#include <QComboBox>

class CComboBox : public QComboBox
{
    Q_OBJECT
public:
    explicit CComboBox(QWidget* parent = 0);
};

#endif // CCOMBOBOX_H
