#ifndef LIVEPROBE_H
#define LIVEPROBE_H

#include "lightModel.h"
#include "opmShareRecord.h"

// The live simulation: measures at the wavelength the page asks for and keeps the reading in
// the shared record current.
class LiveProbe
{
public:
    static constexpr long long kUpdatePeriodMs = 250;
    static constexpr long long kSwitchDelayMs = 300;

    LiveProbe(OpmShareRecord* record, unsigned noiseSeed);

    // Starts at the wavelength already asked for (850 nm when none is) and writes a reading.
    void begin(long long nowMs);
    // Follows wavelenthTarget and refreshes the reading when it is due.
    void step(long long nowMs);

    void setNotConnected(bool on);
    void setNoLight(bool on);
    int wavelengthIndex() const { return m_current; }

private:
    void followTarget(long long nowMs);
    void writeReading(long long nowMs);

    OpmShareRecord* m_record;
    LightModel::Meter m_meter;
    int m_current = 0;
    int m_switchTo = -1;
    long long m_switchAtMs = 0;
    long long m_nextUpdateMs = 0;
    long long m_startMs = 0;
    bool m_notConnected = false;
    bool m_noLight = false;
};

#endif // LIVEPROBE_H
