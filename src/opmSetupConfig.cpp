#include "opm.h"

COpmSetupConfig::COpmSetupConfig() { }
COpmSetupConfig::~COpmSetupConfig() { }
void COpmSetupConfig::COpmSetupConfigLoad() { }
void COpmSetupConfig::COpmSetupConfigSave() { }
void COpmSetupConfig::debugCOpmSetupConfig() { }
