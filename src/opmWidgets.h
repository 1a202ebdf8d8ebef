#ifndef OPMWIDGETS_H
#define OPMWIDGETS_H

// What the units of the Setup tab (NerioOpm) share: the texts of the reader and of the
// settings file, and the rules of the number fields. Private to the page's units.

#include "opm.h"
#include "opmShareRecord.h"

#include <QObject>
#include <QString>

#include <cstring>

namespace OpmPage {

// The wavelengths as the reader reports them and the settings file keeps them.
const char* const kWaveLengthTexts[] = { "850", "1310", "1490", "1550", "1625" };
OPM_STATIC_ASSERT(sizeof kWaveLengthTexts / sizeof kWaveLengthTexts[0] == kWaveLengthCount,
                  one_text_per_wavelength);

// Display units as the settings file keeps them; "dB" stands for the dBm display.
const char* const kUnitTexts[] = { "dB", "mW", "uW" };

// Index of text in a list of the reader's or the settings file's texts, or -1.
template <size_t N>
int indexIn(const char* const (&texts)[N], const char* text)
{
    for (size_t i = 0; i < N; ++i) {
        if (std::strcmp(text, texts[i]) == 0)
            return int(i);
    }
    return -1;
}

inline int waveLengthIndex(const char* text) { return indexIn(kWaveLengthTexts, text); }

inline QString powerLimitsCaption(RusultUnit unit)
{
    switch (unit) {
    case mW:
        return QObject::tr("Power Limits (mW)");
    case uW:
        return QObject::tr("Power Limits (uW)");
    case dB:
        break;
    }
    return QObject::tr("Power Limits (dBm)");
}

inline float textToFloat(const QString& text) { return text.trimmed().toFloat(); }

inline QString formatG6(float value) { return QString::number(double(value), 'g', 6); }

inline bool isValidLength(float length) { return length > 0.0f && length <= 99999.0f; }

// Ends every text field of a copied record inside its field, whatever the reader left there.
inline void terminateTexts(OpmShareRecord& record)
{
    record.wavelenth[sizeof record.wavelenth - 1] = '\0';
    record.unit[sizeof record.unit - 1] = '\0';
    record.value[sizeof record.value - 1] = '\0';
    record.deviceType[sizeof record.deviceType - 1] = '\0';
}

} // namespace OpmPage

#endif // OPMWIDGETS_H
