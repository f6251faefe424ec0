/// In the place of the layer's declarations: here the platform has HID devices itself.
#pragma once

#include "platform/hid.h"
