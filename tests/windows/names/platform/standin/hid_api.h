/// Replaces the layer's header: here Windows itself declares HID devices.
#pragma once

#include "platform/hid.h"
