#ifndef OPMMAIN_H
#define OPMMAIN_H

#include "cwidget.h"
#include "opm.h"
#include "opmDataEngine.h"

#include <cstdio>

class CTabWidget;
class COpmShowResultPage;
namespace halmanager {
class PlatE2PromServ;
}

// Top-level page of the application: the Setup and Result tabs, and the power reader's life.
class COpmMainPage : public CWidget
{
    Q_OBJECT
public:
    explicit COpmMainPage(QWidget* parent = 0);
    ~COpmMainPage();

    QString getKeyboard(const QString& title, const QString& text);
    // The HTML report of every saved reading, named by the operator on the keypad (F1).
    void saveOpmResult();
    void saveGeneralInfoOfSet(FILE* pfOutput, int font_size);
    void writeOpmHtmlData(FILE* html);
    void enterInit();
    void exitClean();
    void translate();

public slots:
    void onTabChanged(int tabIndex);
    void clientQuit();

protected:
    void keyPressEvent(QKeyEvent* event);

private:
    friend struct OpmPageProbe;

    CTabWidget* m_pTabWidget;
    NerioOpm* m_pTableOpmSetup;
    COpmShowResultPage* m_pTableShowResult;
    halmanager::PlatE2PromServ* m_pE2promserv;
};

#endif // OPMMAIN_H
