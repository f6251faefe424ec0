/// All exports of the lighting plug-in, for hosts. They are to be found by name in the loaded library; the names stand
/// in exports.def.
#pragma once

#include "controller/rgb_controller_interface.h"
#include "ec/ec_factories.h"
