/// Lights as text: plain lines, or keyboards and bars in a terminal's colours.
///
/// Pure functions; any thread. An effect gets the name of the mode in `modes` that has its code.
#pragma once

#include <string>
#include <vector>

#include "zarn_lighting/records.h"
#include "zarnctl/panel.h"

namespace zarnctl {

/// "keyboard: brightness 30, BREATHING speed 7 direction 2 colour #ff0000", as far as all zones have it in common.
std::string Headline(const Panel& panel, const std::vector<ModeRecord>& modes);

/// For each panel the headline and, unless all zones run the same effect, a line for each zone: "zone 1: #ff0000" or
/// "zone 2: off". On a panel with more than four zones, equal neighbours share a line: "zones 1 to 16: off".
std::string PlainLights(const std::vector<Panel>& panels, const std::vector<ModeRecord>& modes);

/// For each panel the headline and the drawing, with empty lines between them.
std::string DrawnLights(const std::vector<Panel>& panels, const std::vector<ModeRecord>& modes, double seconds);

/// The panel's keys in 24-bit colours, a line of text for each row, `seconds` after the effect began.
std::string DrawnPanel(const Panel& panel, double seconds);

}  // namespace zarnctl
