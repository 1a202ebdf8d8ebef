#include "offsetBar.h"
#include "shots.h"

namespace {

struct OffsetBarShot
{
    double value;
    const char* fileName;
};

// Limits -20 and -10: one value in the middle of the range, one a little below it.
const double kLowLimit = -20.0;
const double kHighLimit = -10.0;
const OffsetBarShot kShots[] = {
    { -15.0, "offsetbar-15.png" },
    { -21.0, "offsetbar-21.png" },
};

} // namespace

int shootOffsetBar(const ShotOptions& options)
{
    int failures = 0;
    for (const OffsetBarShot& shot : kShots) {
        OffsetBar bar;
        bar.setRangedOffset(kLowLimit, kHighLimit, shot.value);
        if (!saveShot(bar, options, QString::fromLatin1(shot.fileName)))
            ++failures;
    }
    return failures == 0 ? 0 : 1;
}
