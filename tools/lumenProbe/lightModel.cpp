#include "lightModel.h"

#include <cmath>

namespace LightModel {

namespace {

constexpr double kSourceDbm = -3.0;
constexpr double kLinkKm = 3.2;
// Two mated connectors and one fusion splice.
constexpr double kConnectorLossDb = 2 * 0.35 + 0.1;
constexpr double kNoiseDb = 0.02;
constexpr double kDriftDb = 0.05;
constexpr double kDriftPeriodS = 20.0;
constexpr double kPi = 3.14159265358979323846;

const Wavelength kWavelengths[kWavelengthCount] = {
    { "850", 2.5 }, // multimode
    { "1310", 0.35 }, { "1490", 0.25 }, { "1550", 0.22 }, { "1625", 0.25 },
};

} // namespace

bool isValidIndex(int index) { return index >= 0 && index < kWavelengthCount; }

const Wavelength& wavelength(int index) { return kWavelengths[isValidIndex(index) ? index : 0]; }

double expectedLevelDbm(int index)
{
    return kSourceDbm - kLinkKm * wavelength(index).attenuationDbKm - kConnectorLossDb;
}

Meter::Meter(unsigned noiseSeed) : m_random(noiseSeed), m_noise(0.0, kNoiseDb) { }

double Meter::read(int index, double seconds)
{
    const double drift = kDriftDb * std::sin(2.0 * kPi * seconds / kDriftPeriodS);
    return expectedLevelDbm(index) + drift + m_noise(m_random);
}

} // namespace LightModel
