#ifndef OPMMAIN_H
#define OPMMAIN_H

#include "cwidget.h"
#include "opm.h"

#include <cstdio>
#include <list>

class CTabWidget;
class COpmShowResultPage;
namespace halmanager {
class PlatE2PromServ;
}

// The process-wide store of saved readings, at most twelve, oldest first.
class CBrovaOpmDataEngine
{
public:
    enum { kMaxResults = 12 };

    static CBrovaOpmDataEngine* getSingleInstance();

    void addResultItem(Result& record);
    int getResultItemCount();
    Result getLastResultItem();
    void clearAllresultItem();
    void getAllResultItem(std::list<Result>& p_resultCache);

private:
    CBrovaOpmDataEngine() { }

    std::list<Result> m_resultCache;
    static CBrovaOpmDataEngine* m_pInstance;
};

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
