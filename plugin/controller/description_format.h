/// The binary description of a whole controller. Layout and a worked example: docs/formats.md.
///
/// Free functions over plain records: no controller, no thread, no lock.
#pragma once

#include <cstdint>
#include <span>

#include "controller/packed_buffer.h"
#include "zarn_lighting/records.h"

/// The description of `records` in the layout of `protocol_version`: the maker's name travels from version 1 on, the
/// modes' brightness from version 3 on. Texts end at their first NUL and are cut at 65,534 bytes. The low 16 bits of a
/// list's length say how many of its entries are written. Throws std::bad_alloc.
PackedBuffer PackDescription(const ControllerRecords& records, std::uint32_t protocol_version);

/// Reads a description into `records`: texts, kind and active mode are replaced (the maker's name from version 1 on),
/// modes, zones, LEDs and colours are appended, and the zones are bound to their storage.
///
/// All or nothing: `records` stay exactly as they were when this answers false or throws std::bad_alloc. It answers
/// false when the buffer does not hold what it claims, when a list or the zones' LEDs together exceed 65,535, when a
/// grid exceeds 16,381 cells, and when overlapping texts together are longer than the buffer. Beside copies of what
/// `records` already hold, reading takes at most 16 times the buffer's size plus 256 KiB of memory.
bool UnpackDescription(ControllerRecords& records, std::span<const std::uint8_t> buffer,
                       std::uint32_t protocol_version);
