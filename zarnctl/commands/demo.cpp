#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <iostream>
#include <optional>
#include <thread>

#include "zarnctl/checked.h"
#include "zarnctl/commands.h"
#include "zarnctl/description.h"
#include "zarnctl/drawing.h"
#include "zarnctl/mode_settings.h"
#include "zarnctl/session.h"
#include "zarnctl/terminal.h"

namespace zarnctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kFrame{50};
constexpr milliseconds kLongestHold{2500};
constexpr milliseconds kAllHolds{25000};

constexpr std::array<PackedColor, 6> kPalette{0x0000ff, 0x0080ff, 0x00ff40, 0xffc000, 0xff0040, 0xc000ff};

/// `mode` with settings within its ranges that differ from one `number` to the next.
ModeRecord Varied(ModeRecord mode, std::size_t number) {
  const auto value = static_cast<std::uint32_t>(number);
  const std::uint64_t speeds = std::uint64_t{mode.speed_highest} - mode.speed_lowest + 1;
  mode.speed_setting = mode.speed_lowest + static_cast<std::uint32_t>(4 * number % speeds);
  mode.brightness_setting = std::clamp(100 - 10 * (value % 5), mode.brightness_lowest, mode.brightness_highest);
  if (const auto directions = DirectionsOf(mode); !directions.empty()) {
    mode.direction_setting = directions[number % directions.size()];
  }
  std::ranges::fill(mode.mode_colors, kPalette.at(number % kPalette.size()));
  return mode;
}

std::vector<PackedColor> VariedColors(std::size_t led_total) {
  std::vector<PackedColor> colors;
  for (std::size_t i = 0; i < led_total; ++i) colors.push_back(kPalette.at(i % kPalette.size()));
  return colors;
}

/// Shows each mode for a while. A terminal that shows colours gets an animation.
class Stage {
 public:
  Stage(const Hardware& hardware, bool animated, std::size_t device_count)
      : hardware_(hardware), device_count_(device_count) {
    if (animated && !hardware_.Panels().empty()) screen_.emplace();
  }

  void Show(const std::string& title, const std::vector<ModeRecord>& modes) {
    if (!screen_) {
      const std::vector<Panel> panels = hardware_.Panels();
      std::cout << title << "\n" << PlainLights(panels, modes) << std::flush;
      if (panels.empty()) std::this_thread::sleep_for(kLongestHold);  // people look at the real lights
      return;
    }
    const auto began = Clock::now();
    const auto end = began + std::min(kLongestHold, kAllHolds / static_cast<int>(modes.size() * device_count_));
    for (auto now = began; now < end; now = Clock::now()) {
      const double seconds = std::chrono::duration<double>(now - began).count();
      screen_->Show(title + "\n\n" + DrawnLights(hardware_.Panels(), modes, seconds));
      std::this_thread::sleep_for(kFrame);
    }
  }

 private:
  const Hardware& hardware_;
  const std::size_t device_count_;
  std::optional<LiveDrawing> screen_;
};

ExitCode ShowModes(Session& session, const std::string& name, Stage& stage) {
  zarn::host::Device device = session.Create(name);
  const ControllerRecords records = Describe(device);
  for (std::size_t i = 0; i < records.mode_list.size(); ++i) {
    const ModeRecord& mode = records.mode_list[i];
    const bool per_led = mode.color_source == ColorSource::PerLedColors;
    if (per_led && !LightsLeds(name)) continue;
    Check(device.SetMode(static_cast<std::int32_t>(i), Varied(mode, i)));
    if (per_led && !records.color_table.empty()) Check(device.SetColors(VariedColors(records.color_table.size())));
    const ExitCode code = session.Push(device, name, true);
    if (code != ExitCode::Done) return code;
    stage.Show(name + ": " + mode.label + (per_led ? ", a colour per LED" : ""), records.mode_list);
  }
  return ExitCode::Done;
}

}  // namespace

ExitCode RunDemo(Session& session, const TypedValues& typed) {
  const std::vector<std::string>& names = session.Names();
  // Traced lines would tear the drawing apart.
  Stage stage(session.hardware(), StdoutShowsColors() && typed.Find("--trace") == nullptr, names.size());
  for (const std::string& name : names) {
    const ExitCode code = ShowModes(session, name, stage);
    if (code != ExitCode::Done) return code;
  }
  return ExitCode::Done;
}

}  // namespace zarnctl
