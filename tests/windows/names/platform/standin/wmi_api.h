/// Replaces the layer's header: here Windows itself declares COM and the management service.
#pragma once

#include "platform/wmi.h"
