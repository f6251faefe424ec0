/// The records by which a lighting device is described to the host: LEDs, zones, modes and colours.
///
/// Values only: copying a record copies its text and its lists, except that a copied zone shares its grid. The
/// numbers are stored as they come; nothing here validates them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Red in bits 0 to 7, green in bits 8 to 15, blue in bits 16 to 23; the upper byte is carried along unused.
/// Black, 0, is the value of every new entry.
using PackedColor = std::uint32_t;

constexpr std::uint8_t RedOf(PackedColor color) { return static_cast<std::uint8_t>(color); }
constexpr std::uint8_t GreenOf(PackedColor color) { return static_cast<std::uint8_t>(color >> 8); }
constexpr std::uint8_t BlueOf(PackedColor color) { return static_cast<std::uint8_t>(color >> 16); }

// The codes are plain numbers in the records, because a reader stores whatever it receives.

/// Codes of `hw_kind`.
namespace DeviceKind {
inline constexpr std::int32_t Keyboard = 5;  // every device of this system, the whole-device light included
}

/// Codes of `zone_kind`.
namespace ZoneKind {
inline constexpr std::int32_t Linear = 1;  // one row of LEDs without a grid
}

/// Bits of a mode's `capabilities`.
namespace ModeCapability {
inline constexpr std::uint32_t SpeedAdjustable = 0x01;
inline constexpr std::uint32_t DirectionSetA = 0x02;
inline constexpr std::uint32_t DirectionSetB = 0x04;
inline constexpr std::uint32_t DirectionSetC = 0x08;
inline constexpr std::uint32_t BrightnessAdjustable = 0x10;
inline constexpr std::uint32_t PerLedColors = 0x20;
inline constexpr std::uint32_t ModeColors = 0x40;
}  // namespace ModeCapability

/// Codes of a mode's `color_source`.
namespace ColorSource {
inline constexpr std::uint32_t NoColors = 0;
inline constexpr std::uint32_t PerLedColors = 1;  // the mode shows `color_table`
inline constexpr std::uint32_t ModeColors = 2;  // the mode shows its own `mode_colors`, of which devices use the first
}  // namespace ColorSource

/// The `hw_code` of every device's per-LED mode.
inline constexpr std::int32_t kPerLedModeCode = 255;

struct LedRecord {
  std::string label;
  std::uint32_t hw_code = 0;
};

/// A two-dimensional map that a host may attach to a zone. Nothing here interprets its cells.
struct ZoneGrid {
  std::uint32_t rows = 0;
  std::uint32_t columns = 0;
  std::vector<std::uint32_t> cells;  // rows x columns of them
};

struct ZoneRecord {
  std::string label;
  std::int32_t zone_kind = 0;

  // Derived from the zones' order and LED counts when a controller is made or its description is read. The views of
  // copied records still lead into the original; those of moved records stay good.
  LedRecord* led_view = nullptr;      // the zone's first LED in `led_list`, or none
  PackedColor* color_view = nullptr;  // the zone's first colour in `color_table`, or none
  std::uint32_t first_index = 0;      // position of both

  std::uint32_t led_total = 0;
  std::uint32_t led_total_min = 0;
  std::uint32_t led_total_max = 0;
  std::shared_ptr<ZoneGrid> grid;
};

struct ModeRecord {
  std::string label;
  std::int32_t hw_code = 0;
  std::uint32_t capabilities = 0;
  std::uint32_t speed_lowest = 0;
  std::uint32_t speed_highest = 0;
  std::uint32_t brightness_lowest = 0;
  std::uint32_t brightness_highest = 0;
  std::uint32_t color_count_least = 0;
  std::uint32_t color_count_most = 0;
  std::uint32_t speed_setting = 0;
  std::uint32_t brightness_setting = 0;
  std::uint32_t direction_setting = 0;
  std::uint32_t color_source = ColorSource::NoColors;
  std::vector<PackedColor> mode_colors;
};

/// Everything a controller's description carries. The zones' LEDs lie back to back in `led_list`, their colours at
/// the same positions in `color_table`, which has as many entries as the zones have LEDs.
struct ControllerRecords {
  std::string title;
  std::string maker_name;
  std::string caption;
  std::string info_text_1;
  std::string info_text_2;
  std::string info_text_3;
  std::vector<LedRecord> led_list;
  std::vector<ZoneRecord> zone_list;
  std::vector<ModeRecord> mode_list;
  std::vector<PackedColor> color_table;
  std::int32_t hw_kind = 0;
  std::int32_t current_mode = 0;  // index into `mode_list`; a host may set it to anything
};
