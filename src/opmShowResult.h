#ifndef OPMSHOWRESULT_H
#define OPMSHOWRESULT_H

#include "cwidget.h"

class CBrovaOpmDataEngine;

// The Result tab: the saved readings of the result store.
class COpmShowResultPage : public CWidget
{
    Q_OBJECT
public:
    explicit COpmShowResultPage(QWidget* parent = nullptr);
    ~COpmShowResultPage() override;

private:
    CBrovaOpmDataEngine* m_opmData;
};

#endif // OPMSHOWRESULT_H
