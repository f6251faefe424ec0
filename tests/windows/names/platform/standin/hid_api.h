/// In the place of the layer's declarations: here Windows itself declares HID devices.
#pragma once

#include "platform/hid.h"
