#ifndef LIGHTMODEL_H
#define LIGHTMODEL_H

#include <random>

// A light source and a fibre link between it and the meter: what a reading at each of the
// five wavelengths should come out as.
namespace LightModel {

constexpr int kWavelengthCount = 5;

struct Wavelength
{
    const char* text; // as the reader reports it: "1550"
    double attenuationDbKm; // of the fibre this wavelength is used on
};

// Index as in wavelenthTarget: 0 = 850 nm (multimode) ... 4 = 1625 nm.
bool isValidIndex(int index);
const Wavelength& wavelength(int index);

// Source power minus fibre and connector losses, without noise.
double expectedLevelDbm(int index);

class Meter
{
public:
    explicit Meter(unsigned noiseSeed);
    // A reading at time seconds: the expected level with a slow drift and a little noise.
    double read(int index, double seconds);

private:
    std::mt19937 m_random;
    std::normal_distribution<double> m_noise;
};

} // namespace LightModel

#endif // LIGHTMODEL_H
