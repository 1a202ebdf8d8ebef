#include "liveProbe.h"

#include "fixedText.h"

#include <cstdio>

namespace {

const char kNoLightText[] = "---.--";

// The page writes the target while the reader runs: read it once per look.
int targetOf(const OpmShareRecord* record)
{
    return *reinterpret_cast<const volatile int32_t*>(&record->wavelenthTarget);
}

} // namespace

LiveProbe::LiveProbe(OpmShareRecord* record, unsigned noiseSeed)
    : m_record(record), m_meter(noiseSeed)
{ }

void LiveProbe::begin(long long nowMs)
{
    m_startMs = nowMs;
    const int target = targetOf(m_record);
    m_current = LightModel::isValidIndex(target) ? target : 0;
    writeReading(nowMs);
}

void LiveProbe::step(long long nowMs)
{
    followTarget(nowMs);
    if (nowMs >= m_nextUpdateMs)
        writeReading(nowMs);
}

void LiveProbe::setNotConnected(bool on) { m_notConnected = on; }

void LiveProbe::setNoLight(bool on) { m_noLight = on; }

// The module needs a moment to retune; until then the old wavelength's reading stays.
void LiveProbe::followTarget(long long nowMs)
{
    const int target = targetOf(m_record);
    if (!LightModel::isValidIndex(target) || target == m_current) {
        m_switchTo = -1;
        return;
    }
    if (target != m_switchTo) {
        m_switchTo = target;
        m_switchAtMs = nowMs + kSwitchDelayMs;
    } else if (nowMs >= m_switchAtMs) {
        m_current = target;
        m_switchTo = -1;
        writeReading(nowMs);
    }
}

void LiveProbe::writeReading(long long nowMs)
{
    char value[32];
    const double level = m_meter.read(m_current, double(nowMs - m_startMs) / 1000.0);
    if (m_notConnected || m_noLight)
        FixedText::copy(value, kNoLightText);
    else
        std::snprintf(value, sizeof value, "%.2f", level);
    // Texts first, the state last: the page may copy the record at any moment.
    FixedText::copy(m_record->wavelenth, LightModel::wavelength(m_current).text);
    FixedText::copy(m_record->unit, "dBm");
    FixedText::copy(m_record->value, value);
    m_record->flag = m_notConnected ? OpmFlagNotConnected : OpmFlagReading;
    m_nextUpdateMs = nowMs + kUpdatePeriodMs;
}
