#include "opmReading.h"

#include "fixedText.h"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Results are computed in double and kept as floats: one beyond the float range becomes an
// infinity rather than an undefined conversion.
float toFloat(double value)
{
    if (value > double(FLT_MAX))
        return INFINITY;
    if (value < -double(FLT_MAX))
        return -INFINITY;
    return float(value);
}

} // namespace

float opmReadingValue(const char* value) { return toFloat(atof(value)); }

bool opmFormatReading(const OpmDisplaySettings& settings, const char* value, const char* unit,
                      char* text, size_t textSize, Result* result)
{
    if (std::strcmp(value, "---.--") == 0) {
        FixedText::copy(text, textSize, "---.--");
        return true;
    }
    const float fReading = opmReadingValue(value);
    float fResult = 0.0f;
    if (settings.mode != PowerMeter) {
        const double ref = atof(settings.reference);
        char length[64];
        switch (settings.lossUnit) {
        case LossLim_dBkm:
        case LossLim_dBmi: {
            const bool km = settings.lossUnit == LossLim_dBkm;
            fResult = toFloat((ref - double(fReading)) / double(settings.length));
            snprintf(text, textSize, "%.6f %s", double(fResult), km ? "dB/km" : "dB/mi");
            snprintf(length, sizeof length, km ? "%f km" : "%f mi", double(settings.length));
            FixedText::copyMeasurement(result->fiberLength, length);
            return true;
        }
        case LossLim_dB:
            fResult = toFloat(ref - double(fReading));
            snprintf(text, textSize, "%.6f %s", double(fResult), "dB");
            FixedText::copy(result->fiberLength, "");
            return true;
        }
        puts("Show result, Loss Meter mode, uint error!");
        return false;
    }
    switch (settings.unit) {
    case mW:
        fResult = toFloat(std::pow(10.0, double(fReading) / 10.0));
        snprintf(text, textSize, "%.6f %s", double(fResult), "mW");
        FixedText::copy(result->limitsUnit, "mW");
        printf("*****%f---%f********\n", double(fReading), double(fResult));
        return true;
    case uW:
        fResult = toFloat(std::pow(10.0, double(fReading) / 10.0) * 1000.0);
        snprintf(text, textSize, "%.6f %s", double(fResult), "uW");
        FixedText::copy(result->limitsUnit, "uW");
        return true;
    case dB: {
        fResult = fReading;
        const char* shownUnit = std::strcmp(unit, "dB") == 0 ? "dB" : "dBm";
        snprintf(text, textSize, "%.3f %s", double(fResult), shownUnit);
        FixedText::copy(result->limitsUnit, shownUnit);
        return true;
    }
    }
    puts("Show result, Power Meter mode, unit idc error!");
    return false;
}
