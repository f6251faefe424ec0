#include "zarnctl/description.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zarnctl/checked.h"
#include "zarnctl/complaint.h"
#include "zarnctl/mode_settings.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

bool IsUsable(const ControllerRecords& records) {
  const bool has_active_mode =
      records.current_mode >= 0 && static_cast<std::size_t>(records.current_mode) < records.mode_list.size();
  return has_active_mode && std::ranges::all_of(records.mode_list, [](const ModeRecord& mode) {
           return mode.speed_lowest <= mode.speed_highest && mode.brightness_lowest <= mode.brightness_highest;
         });
}

std::string SettingText(const char* name, std::uint32_t setting, std::uint32_t lowest, std::uint32_t highest) {
  return std::string(", ") + name + " " + std::to_string(setting) + " (" + std::to_string(lowest) + " to " +
         std::to_string(highest) + ")";
}

std::string ColorsOf(const ModeRecord& mode) {
  if (mode.color_source == ColorSource::PerLedColors) return ", a colour per LED";
  std::string text;
  for (const PackedColor color : mode.mode_colors) text += ", colour " + ColorText(color);
  return text;
}

std::string ModeLine(const ModeRecord& mode, bool active) {
  std::string text = "  mode " + mode.label + ": code " + std::to_string(mode.hw_code);
  if ((mode.capabilities & ModeCapability::SpeedAdjustable) != 0) {
    text += SettingText("speed", mode.speed_setting, mode.speed_lowest, mode.speed_highest);
  }
  if ((mode.capabilities & ModeCapability::BrightnessAdjustable) != 0) {
    text += SettingText("brightness", mode.brightness_setting, mode.brightness_lowest, mode.brightness_highest);
  }
  if (const auto directions = DirectionsOf(mode); !directions.empty()) {
    text += SettingText("direction", mode.direction_setting, directions.front(), directions.back());
  }
  return text + ColorsOf(mode) + (active ? " (active)" : "") + "\n";
}

}  // namespace

ControllerRecords Describe(const zarn::host::Device& device) {
  ControllerRecords records = Checked(device.Describe());
  if (!IsUsable(records)) throw Complaint(ExitCode::Failed, "the plug-in's description of the device makes no sense");
  return records;
}

std::string Summary(const std::string& name, const ControllerRecords& records) {
  return name + ": " + records.title + ", " + Counted(records.zone_list.size(), "zone") + ", " +
         Counted(records.led_list.size(), "LED") + ", " + Counted(records.mode_list.size(), "mode");
}

std::string Details(const std::string& name, const ControllerRecords& records) {
  std::string text = Summary(name, records) + "\n  maker: " + records.maker_name + "\n";
  for (const ZoneRecord& zone : records.zone_list) {
    text += "  zone: " + zone.label + ", " + Counted(zone.led_total, "LED") + "\n";
  }
  for (std::size_t i = 0; i < records.led_list.size() && i < records.color_table.size(); ++i) {
    text += "  LED: " + records.led_list[i].label + ", " + ColorText(records.color_table[i]) + "\n";
  }
  for (std::size_t i = 0; i < records.mode_list.size(); ++i) {
    text += ModeLine(records.mode_list[i], static_cast<std::int32_t>(i) == records.current_mode);
  }
  return text;
}

}  // namespace zarnctl
