/// Replaces the layer's header: here Windows itself declares environment, time, locks and files.
#pragma once

#include "platform/system.h"
