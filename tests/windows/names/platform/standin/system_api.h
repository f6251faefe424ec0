/// In the place of the layer's declarations: here the platform has the rest of the platform itself.
#pragma once

#include "platform/system.h"
