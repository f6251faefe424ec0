/// A keyboard's lights as text: plain lines, or a keyboard in a terminal's colours.
///
/// Pure functions of what they are given; any thread.
#pragma once

#include <string>
#include <vector>

#include "controller/records.h"
#include "simulator/ec_firmware.h"

namespace zarnctl {

/// "keyboard: brightness 30, BREATHING speed 7 direction 2 colour #ff0000"; an effect is named by the mode in
/// `modes` that has its code.
std::string Headline(const simulator::KeyboardLights& lights, const std::vector<ModeRecord>& modes);

/// The headline and, when no effect runs, a line for each zone: "zone 1: #ff0000" or "zone 2: off".
std::string PlainLights(const simulator::KeyboardLights& lights, const std::vector<ModeRecord>& modes);

/// Five rows of keys in 24-bit colours, each a line of text, `seconds` after the effect began. The firmware's
/// directions 1 to 6 are drawn as right, left, up, down, outwards to both sides, and outwards up and down.
std::string DrawnKeyboard(const simulator::KeyboardLights& lights, double seconds);

}  // namespace zarnctl
