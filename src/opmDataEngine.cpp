#include "opmDataEngine.h"

#include "fixedText.h"

#include <cstdio>
#include <ctime>

CBrovaOpmDataEngine* CBrovaOpmDataEngine::m_pInstance = 0;

namespace {

template <size_t N>
void endText(char (&field)[N])
{
    field[N - 1] = '\0';
}

// Every text field that leaves the store ends inside its width, so its readers may use "%s".
void endTextFields(Result& record)
{
    endText(record.testMode);
    endText(record.waveLenth);
    endText(record.minimum);
    endText(record.maximum);
    endText(record.value);
    endText(record.ref);
    endText(record.pass);
    endText(record.limitsUnit);
    endText(record.fiberLength);
}

} // namespace

CBrovaOpmDataEngine* CBrovaOpmDataEngine::getSingleInstance()
{
    if (!m_pInstance)
        m_pInstance = new CBrovaOpmDataEngine;
    return m_pInstance;
}

void CBrovaOpmDataEngine::addResultItem(Result& record)
{
    if (m_resultCache.size() > size_t(kMaxResults - 1))
        m_resultCache.pop_front();
    const time_t now = time(0);
    struct tm local = {};
    localtime_r(&now, &local);
    char stamp[64];
    snprintf(stamp, sizeof stamp, "%.4d-%.2d-%.2d %.2d:%.2d:%.2d", local.tm_year + 1900,
             local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    FixedText::copy(record.time, stamp);
    printf("addResultItem %s \n", record.time);
    m_resultCache.push_back(record);
    endTextFields(m_resultCache.back());
}

int CBrovaOpmDataEngine::getResultItemCount() { return int(m_resultCache.size()); }

Result CBrovaOpmDataEngine::getLastResultItem()
{
    Result last = {};
    if (!m_resultCache.empty())
        last = m_resultCache.back();
    return last;
}

void CBrovaOpmDataEngine::clearAllresultItem() { m_resultCache.clear(); }

void CBrovaOpmDataEngine::getAllResultItem(std::list<Result>& p_resultCache)
{
    p_resultCache.insert(p_resultCache.end(), m_resultCache.begin(), m_resultCache.end());
}
