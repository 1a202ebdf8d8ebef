// The device root of the plug-in that the loader suite loads through Qt's own plug-in loader:
// the folder the suite names in OPM_TEST_DEVICE_ROOT. Without one the plug-in would work on the
// set's real paths, so it stops instead.
#include "devicePaths.h"

#include <cstdio>
#include <cstdlib>

const char* deviceRoot()
{
    const char* root = std::getenv("OPM_TEST_DEVICE_ROOT");
    if (!root || !*root) {
        std::fprintf(stderr, "OPM_TEST_DEVICE_ROOT is not set\n");
        std::abort();
    }
    return root;
}
