/// The OEM structure of type 172 in the machine's SMBIOS table: the firmware's version and what lighting hardware the
/// embedded controller drives. docs/formats.md has its layout.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

/// A firmware version. They are ordered, the newer one being the greater.
struct FirmwareVersion {
  std::int32_t major = 0;
  std::int32_t minor = 0;

  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 of the comparison itself for a pointer
  friend constexpr auto operator<=>(const FirmwareVersion&, const FirmwareVersion&) = default;
};

/// A copy of the machine's structure table.
struct RawSmbiosTable {
  std::uint8_t smbiosMajor = 0;
  std::uint8_t smbiosMinor = 0;
  std::unique_ptr<std::uint8_t[]> data;
  std::uint32_t length = 0;  // bytes in `data`
};

/// The structure, unpacked. Items beyond `itemCount` are 0; a claimed length below 4 makes it negative.
struct stSMBiosType172 {
  std::uint8_t type = 0;
  std::uint8_t length = 0;  // of the formatted area, with its header
  std::uint16_t handle = 0;
  std::uint8_t biosMajor = 0;
  std::uint8_t biosMinor = 0;
  std::int32_t itemCount = 0;
  std::array<std::uint8_t, 256> itemIds{};
  std::array<std::uint16_t, 256> itemValues{};
};

/// Items that tell of lighting hardware, and what their values mean.
inline constexpr std::uint8_t kItemKeyboardZones = 8;  // as IsZoneCount
inline constexpr std::uint8_t kItemRgbKeyboard = 10;
inline constexpr std::uint16_t kRgbKeyboardNone = 1;
inline constexpr std::uint16_t kRgbKeyboardThere = 2;
inline constexpr std::uint8_t kItemLightBar = 23;
inline constexpr std::uint16_t kLightBarThere = 1;  // 2: none

/// The numbers of zones that a keyboard may have, 0 being that of none.
constexpr bool IsZoneCount(std::uint16_t value) { return value == 0 || value == 1 || value == 3 || value == 4; }

/// Reads the table through the management service, anew each time; 1 when `data` and `length` hold it, else 0 and they
/// hold nothing. May block as long as the service does. Throws std::bad_alloc.
int ReadRawSmbiosTable(RawSmbiosTable& table);

/// Unpacks the first structure of type 172; false, with the record all zero, when there is none or when it runs past
/// the table's end. Reads no byte beyond the table.
bool FindSMBiosType172(const RawSmbiosTable& table, stSMBiosType172& record);
bool FindSMBiosType172(std::span<const std::uint8_t> table, stSMBiosType172& record);

/// Reads the table and unpacks the structure from it.
bool ReadSMBiosType172(stSMBiosType172& record);

/// The formatted area, with its header, of the structure that FindSMBiosType172 unpacks; empty when there is none.
std::span<const std::uint8_t> FindOemStructure(std::span<const std::uint8_t> table);

/// Lighting hardware as discovery takes it from the record.
struct AnnouncedLights {
  bool keyboard = false;
  bool rgb_keyboard = false;
  bool light_bar = false;
};

/// The light bar's item closes the list. In front of it, the last item of a kind counts here; the device controllers
/// read the first one.
AnnouncedLights FindAnnouncedLights(const stSMBiosType172& record);

/// The value of the first item with that id.
std::optional<std::uint16_t> FirstItem(const stSMBiosType172& record, std::uint8_t id);
