#ifndef OPMDATAENGINE_H
#define OPMDATAENGINE_H

#include "opm.h"

#include <list>

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

#endif // OPMDATAENGINE_H
