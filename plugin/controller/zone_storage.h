/// Where the zones' LEDs and colours lie in a controller's lists.
#pragma once

#include "zarn_lighting/records.h"

/// Sizes `color_table` to the zones' LEDs (kept entries keep their colours, new ones are black) and derives every
/// zone's views and first index. Needed after any change of a list's length or of a zone's `led_total`, and after
/// copying records, because the copied views still lead into the original; moved ones stay good.
void BindZoneStorage(ControllerRecords& records);
