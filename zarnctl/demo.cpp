#include "zarnctl/demo.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "zarnctl/checked.h"
#include "zarnctl/description.h"
#include "zarnctl/drawing.h"
#include "zarnctl/lights.h"
#include "zarnctl/mode_settings.h"
#include "zarnctl/panel.h"
#include "zarnctl/terminal.h"

namespace zarnctl {
namespace {

using zarn::host::Device;

using Clock = std::chrono::steady_clock;
using std::chrono::duration;
using std::chrono::duration_cast;
using std::chrono::milliseconds;

constexpr milliseconds kFrame{50};
constexpr milliseconds kPoll{5};
constexpr milliseconds kAskAgain{1000};
constexpr milliseconds kDeadline{5000};
/// The most calls that a step waits for: two pushes of a step, and one of the step before.
constexpr int kCallsPerStep = 18;
constexpr milliseconds kLongestHold{2500};
constexpr milliseconds kAllHolds{25000};

constexpr std::array<PackedColor, 6> kPalette{0x0000ff, 0x0080ff, 0x00ff40, 0xffc000, 0xff0040, 0xc000ff};

struct Step {
  std::int32_t mode_index = 0;
  ModeRecord mode;
  /// For the mode that shows a colour per LED; empty otherwise.
  std::vector<PackedColor> colors;
  /// Whether the worker is asked for the colours, and not for the mode.
  bool only_colors = false;
};

/// `mode` with settings that differ from step to step, all within its ranges.
ModeRecord Varied(ModeRecord mode, std::size_t number) {
  const auto value = static_cast<std::uint32_t>(number);
  const std::uint64_t speeds = std::uint64_t{mode.speed_highest} - mode.speed_lowest + 1;
  mode.speed_setting = mode.speed_lowest + static_cast<std::uint32_t>(4 * number % speeds);
  mode.brightness_setting = std::clamp(100 - 10 * (value % 5), mode.brightness_lowest, mode.brightness_highest);
  if (const auto directions = DirectionsOf(mode); !directions.empty()) {
    mode.direction_setting = directions[number % directions.size()];
  }
  std::fill(mode.mode_colors.begin(), mode.mode_colors.end(), kPalette.at(number % kPalette.size()));
  return mode;
}

std::vector<PackedColor> VariedColors(std::size_t led_total, std::size_t number) {
  std::vector<PackedColor> colors;
  for (std::size_t i = 0; i < led_total; ++i) colors.push_back(kPalette.at((i + number) % kPalette.size()));
  return colors;
}

Step MakeStep(const ControllerRecords& records, std::int32_t mode_index, std::size_t number) {
  const ModeRecord& mode = records.mode_list.at(static_cast<std::size_t>(mode_index));
  const bool per_led = mode.color_source == ColorSource::PerLedColors;
  return {.mode_index = mode_index,
          .mode = Varied(mode, number),
          .colors = per_led ? VariedColors(records.color_table.size(), number) : std::vector<PackedColor>()};
}

/// Every mode once, and the colours per LED again at the end, coming from an effect.
std::vector<Step> StepsFor(const ControllerRecords& records, bool lights_leds) {
  std::vector<Step> steps;
  for (std::size_t i = 0; i < records.mode_list.size(); ++i) {
    const bool per_led = records.mode_list[i].color_source == ColorSource::PerLedColors;
    if (lights_leds || !per_led) steps.push_back(MakeStep(records, static_cast<std::int32_t>(i), i));
  }
  if (!lights_leds) return steps;
  steps.push_back(MakeStep(records, FindPerLedMode(records.mode_list), steps.size()));
  steps.back().only_colors = true;
  return steps;
}

class Demo {
 public:
  Demo(Device& device, const std::string& name, Hardware& hardware, std::size_t animated_devices)
      : device_(device),
        name_(name),
        hardware_(hardware),
        records_(Describe(device)),
        steps_(StepsFor(records_, LightsLeds(name))) {
    if (!hardware_.HasVisibleLights()) hold_ = kLongestHold;  // for whoever looks at the lights
    if (!hardware_.HasVisibleLights() || animated_devices == 0 || steps_.empty()) return;
    hold_ = std::min(kLongestHold, kAllHolds / static_cast<int>(steps_.size() * animated_devices));
    screen_.emplace();
  }

  ExitCode Run() {
    // A notebook that cannot be lit at all shows it in a push that nobody has to wait for.
    Check(device_.WriteMode());
    if (Report(hardware_.TakeFaults(name_, records_))) return ExitCode::LightsDiffer;
    for (const Step& step : steps_) {
      Begin(step);
      if (!WaitForLights(step)) return GiveUp(step);
      // On this thread, as a service ends a drag: whatever the worker was doing, the last value is the one that stays.
      Check(device_.WriteMode());
      if (Report(hardware_.TakeFaults(name_, records_))) return ExitCode::LightsDiffer;
      Hold();
    }
    return ExitCode::Done;
  }

 private:
  void Begin(const Step& step) {
    Check(device_.SetMode(step.mode_index, step.mode));
    if (!step.colors.empty()) Check(device_.SetColors(step.colors));
    records_ = Describe(device_);
    title_ = name_ + ": " + step.mode.label + (step.colors.empty() ? "" : ", a colour per LED");
    began_ = Clock::now();
    Request(step);
  }

  void Request(const Step& step) {
    if (step.only_colors) {
      device_.controller().RequestColorPush();
    } else {
      device_.controller().ChooseMode(step.mode_index);
    }
  }

  bool WaitForLights(const Step& step) {
    const auto deadline = began_ + kDeadline + kCallsPerStep * hardware_.FirmwareLatency();
    auto ask_again = began_ + kAskAgain;
    while (!hardware_.Shows(name_, records_)) {
      const auto now = Clock::now();
      if (now > deadline) return false;
      if (now > ask_again) {
        // A request is absorbed by a push of its kind that is still running.
        Request(step);
        ask_again = now + kAskAgain;
      }
      Draw();
      std::this_thread::sleep_for(screen_ ? kFrame : kPoll);
    }
    return true;
  }

  ExitCode GiveUp(const Step& step) {
    if (!Report(hardware_.TakeFaults(name_, records_))) Complain(step.mode.label + " came too late to be waited for");
    return ExitCode::LightsDiffer;
  }

  void Hold() {
    if (!screen_) {
      std::cout << title_ << "\n" << PlainLights(hardware_.Panels(), records_.mode_list) << std::flush;
      std::this_thread::sleep_for(hold_);
      return;
    }
    const auto end = Clock::now() + hold_;
    while (Clock::now() < end) {
      Draw();
      std::this_thread::sleep_for(kFrame);
    }
  }

  void Draw() {
    if (!screen_) return;
    const double seconds = duration_cast<duration<double>>(Clock::now() - began_).count();
    screen_->Show(title_ + "\n\n" + DrawnLights(hardware_.Panels(), records_.mode_list, seconds));
  }

  Device& device_;
  const std::string name_;
  Hardware& hardware_;
  ControllerRecords records_;  // what the device says of itself since the step began
  const std::vector<Step> steps_;
  std::optional<LiveDrawing> screen_;
  milliseconds hold_{0};  // how long each step is shown

  // Of the step that runs.
  std::string title_;
  Clock::time_point began_;
};

}  // namespace

ExitCode RunDemo(zarn::host::Device& device, const std::string& name, Hardware& hardware,
                 std::size_t animated_devices) {
  return Demo(device, name, hardware, animated_devices).Run();
}

}  // namespace zarnctl
