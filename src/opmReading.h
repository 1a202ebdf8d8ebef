#ifndef OPMREADING_H
#define OPMREADING_H

#include "opm.h"

#include <cstddef>

// The reading display's arithmetic and text: what the Setup tab shows for a reading in its mode
// and unit. The page calls it on every tick; it touches no widget.

// A reading text as a number (atof); one beyond the float range becomes an infinity rather than
// an undefined conversion.
float opmReadingValue(const char* value);

// The page's settings that decide how a reading is shown.
struct OpmDisplaySettings
{
    TestModeType mode;
    RusultUnit unit; // Power Meter
    LossLengthType lossUnit; // Loss Meter
    float length; // fibre length for dB/km and dB/mi
    const char* reference; // reference level of the wavelength measured at
};

// Writes the text of a reading (value and unit as the reader sent them, signed and without
// blanks) into text, and what the display decides of the saved reading: its limitsUnit in
// Power Meter mode, its fiberLength in Loss Meter mode. "---.--" (no light) is shown as it is and
// decides neither. False, after a trace, for a mode or unit outside its enumeration: nothing is
// written then.
bool opmFormatReading(const OpmDisplaySettings& settings, const char* value, const char* unit,
                      char* text, size_t textSize, Result* result);

#endif // OPMREADING_H
