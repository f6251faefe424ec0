/// What is lit on a notebook, each part in the same form: the keyboard, the light bar, the HID keyboards. Any thread.
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
    simulator::Color color = {};
    std::uint8_t brightness = 0;
    /// The running effect, with the host's code. It hides the zone's own colour.
    std::optional<simulator::Effect> effect = {};

    friend bool operator==(const Zone&, const Zone&) = default;
  };
  std::string name = {};  // "keyboard", "light bar", "HID keyboard", "HID keyboard 2"
  Shape shape = Shape::Keyboard;
  std::vector<Zone> zones = {};

  friend bool operator==(const Panel&, const Panel&) = default;
};

/// The notebook's panels, without keyboards that are unplugged.
std::vector<Panel> PanelsOf(simulator::Notebook& notebook);

}  // namespace zarnctl
