/// In the place of the layer's declarations: here Windows itself declares environment, time, locks and files.
#pragma once

#include "platform/system.h"
