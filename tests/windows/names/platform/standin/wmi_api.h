/// In the place of the layer's declarations: here Windows itself declares COM and the management service.
#pragma once

#include "platform/wmi.h"
