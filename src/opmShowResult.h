#ifndef OPMSHOWRESULT_H
#define OPMSHOWRESULT_H

#include "cwidget.h"

class CBrovaOpmDataEngine;
class CLabel;
class CPushButton;
struct Result;

// The Result tab: the saved readings of the result store, one line each, oldest first. The
// lines are built when the tab is shown and blanked when it is hidden.
class COpmShowResultPage : public CWidget
{
    Q_OBJECT
public:
    enum { kLineCount = 12 };
    // A line is built in a buffer of this size, so it holds at most kLineSize - 1 characters.
    enum { kLineSize = 100 };

    explicit COpmShowResultPage(QWidget* parent = 0);
    ~COpmShowResultPage();

    // The line of the result at position index (0 for the oldest).
    static QString resultLine(int index, const Result& result);

protected:
    void showEvent(QShowEvent* event);
    void hideEvent(QHideEvent* event);

private slots:
    void onClearBtnClick();

private:
    friend struct OpmPageProbe;

    void clearLines();

    CBrovaOpmDataEngine* m_opmData;
    CLabel* m_pSummary[kLineCount];
    CWidget* m_pWidget;
    CPushButton* m_pClear;
};

#endif // OPMSHOWRESULT_H
