/// The four update packets: one mode, the colour table, the colours of one zone, the colour of one LED. Layouts and
/// worked examples: docs/formats.md.
///
/// Free functions over plain records: no controller, no thread, no lock. Writers given an index outside their list
/// give a well-formed packet that its reader ignores. Readers are all-or-nothing: false means that the packet was
/// ignored and `records` are exactly as they were, also when std::bad_alloc is thrown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "controller/packed_buffer.h"
#include "zarn_lighting/records.h"

inline constexpr std::size_t kOneColorPacketSize = 8;

PackedBuffer PackModePacket(std::int32_t mode_index, const ModeRecord& mode, std::uint32_t protocol_version);
PackedBuffer PackModePacket(const ControllerRecords& records, std::int32_t mode_index, std::uint32_t protocol_version);
/// Replaces the mode and makes it the active one. Below version 3 the mode keeps its brightness fields.
bool UnpackModePacket(ControllerRecords& records, std::span<const std::uint8_t> packet, std::uint32_t protocol_version);

PackedBuffer PackColorTablePacket(std::span<const PackedColor> colors);
/// Replaces the first colours of the table; ignored with no colours or with more than the table has.
bool UnpackColorTablePacket(ControllerRecords& records, std::span<const std::uint8_t> packet);

PackedBuffer PackZoneColorsPacket(const ControllerRecords& records, std::int32_t zone_index);
/// Replaces the first colours of the zone; ignored with no colours or with more than the zone has LEDs.
bool UnpackZoneColorsPacket(ControllerRecords& records, std::span<const std::uint8_t> packet);

PackedBuffer PackOneColorPacket(const ControllerRecords& records, std::int32_t led_index);
/// Replaces the LED's colour; ignored for an index outside `led_list` or `color_table`.
bool UnpackOneColorPacket(ControllerRecords& records, std::span<const std::uint8_t> packet);
