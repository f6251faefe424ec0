/// Everything that is lit on a notebook, seen alike: the keyboard, the light bar, the HID keyboards.
///
/// Values only. Threads: any, as the notebook has it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/notebook.h"

namespace zarnctl {

struct Panel {
  enum class Shape { Keyboard, Bar };
  struct Zone {
    bool on = false;
    simulator::Color color;
    std::uint8_t brightness = 0;
    /// The running effect, by the host's code, takes the place of the zone's own colour.
    std::optional<simulator::Effect> effect;

    friend bool operator==(const Zone&, const Zone&) = default;
  };
  std::string name;  // "keyboard", "light bar", "HID keyboard", "HID keyboard 2"
  Shape shape = Shape::Keyboard;
  std::vector<Zone> zones;

  friend bool operator==(const Panel&, const Panel&) = default;
};

/// The panels that the notebook has and that are plugged in.
std::vector<Panel> PanelsOf(simulator::Notebook& notebook);

}  // namespace zarnctl
