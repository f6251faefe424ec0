/// All exports of the lighting plug-in, for hosts. Find them in the loaded library by the names of the functions that
/// these headers declare.
///
/// Keep the library loaded while any of its objects lives. With logging on, keep it loaded to the end of the process:
/// the log is never given up, and a library loaded again starts another one.
#pragma once

#include "zarn_lighting/check_device_status.h"
#include "zarn_lighting/ec_factories.h"
#include "zarn_lighting/hid_keyboard_factories.h"
#include "zarn_lighting/rgb_controller_interface.h"
