/// The fields of each block of the binary formats, in their order there. Each list serves measuring, writing and
/// reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "controller/wire_archive.h"
#include "zarn_lighting/records.h"

/// The first protocol version with the maker's name, and the first with the modes' brightness.
inline constexpr std::uint32_t kVersionWithMaker = 1;
inline constexpr std::uint32_t kVersionWithBrightness = 3;

/// The largest grid whose length fits 16 bits.
inline constexpr std::uint64_t kMostGridCells = 16381;

template <typename Archive, typename Colors>
void ColorListFields(Archive& archive, Colors& colors) {
  ListFields(archive, colors, [](auto& inner, auto& color) { inner.Number(color); });
}

template <typename Archive, typename Mode>
void ModeFields(Archive& archive, Mode& mode, std::uint32_t protocol_version) {
  const bool with_brightness = protocol_version >= kVersionWithBrightness;
  archive.Text(mode.label);
  archive.Number(mode.hw_code);
  archive.Number(mode.capabilities);
  archive.Number(mode.speed_lowest);
  archive.Number(mode.speed_highest);
  if (with_brightness) archive.Number(mode.brightness_lowest);
  if (with_brightness) archive.Number(mode.brightness_highest);
  archive.Number(mode.color_count_least);
  archive.Number(mode.color_count_most);
  archive.Number(mode.speed_setting);
  if (with_brightness) archive.Number(mode.brightness_setting);
  archive.Number(mode.direction_setting);
  archive.Number(mode.color_source);
  ColorListFields(archive, mode.mode_colors);
}

/// The grid's length in bytes, kept to 16 bits at each step.
inline std::uint16_t GridLength(const ZoneGrid* grid) {
  if (grid == nullptr) return 0;
  return static_cast<std::uint16_t>(((grid->rows & 0xFFFF) * (grid->columns & 0xFFFF) + 2) * 4);
}

/// Makes room for the cells that a received grid claims to have.
inline void SizeCells(ReadArchive& archive, ZoneGrid& grid) {
  const std::uint64_t cells = std::uint64_t{grid.rows} * grid.columns;
  if (cells > kMostGridCells || cells * sizeof(std::uint32_t) > archive.remaining()) return archive.Refuse();
  grid.cells.resize(static_cast<std::size_t>(cells));
}

template <typename Archive, typename GridPointer>
void GridFields(Archive& archive, GridPointer& grid) {
  std::uint16_t length = GridLength(grid.get());
  archive.Number(length);
  if (length == 0) return;
  if constexpr (Archive::kReading) grid = std::make_shared<ZoneGrid>();
  archive.Number(grid->rows);
  archive.Number(grid->columns);
  if constexpr (Archive::kReading) SizeCells(archive, *grid);
  for (auto& cell : grid->cells) archive.Number(cell);
}

template <typename Archive, typename Zone>
void ZoneFields(Archive& archive, Zone& zone) {
  archive.Text(zone.label);
  archive.Number(zone.zone_kind);
  archive.Number(zone.led_total_min);
  archive.Number(zone.led_total_max);
  archive.Number(zone.led_total);
  GridFields(archive, zone.grid);
}

template <typename Archive, typename Led>
void LedFields(Archive& archive, Led& led) {
  archive.Text(led.label);
  archive.Number(led.hw_code);
}
