/// In the place of the layer's declarations: here the platform has COM and the management service itself.
#pragma once

#include "platform/wmi.h"
