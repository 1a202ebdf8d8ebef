#include "devicePaths.h"

#ifndef OPM_DEVICE_ROOT
#define OPM_DEVICE_ROOT ""
#endif

const char* deviceRoot() { return OPM_DEVICE_ROOT; }
