#include "zarnctl/device.h"

#include <algorithm>
#include <cstddef>

#include "controller/description_format.h"
#include "controller/packet_formats.h"
#include "zarnctl/complaint.h"

namespace zarnctl {
namespace {

constexpr std::uint32_t kProtocolVersion = 3;  // the first with brightness

/// Whether everything that counts on the description can: an active mode, and ranges that are the right way up.
bool IsUsable(const ControllerRecords& records) {
  const bool has_active_mode =
      records.current_mode >= 0 && static_cast<std::size_t>(records.current_mode) < records.mode_list.size();
  return has_active_mode && std::ranges::all_of(records.mode_list, [](const ModeRecord& mode) {
           return mode.speed_lowest <= mode.speed_highest && mode.brightness_lowest <= mode.brightness_highest;
         });
}

}  // namespace

ControllerRecords Device::Describe() const {
  const std::unique_ptr<std::uint8_t[]> buffer(controller_->PackDescription(kProtocolVersion));
  std::size_t size = 0;
  for (std::size_t i = 0; buffer != nullptr && i < 4; ++i) size |= std::size_t{buffer[i]} << 8 * i;
  ControllerRecords records;
  if (!UnpackDescription(records, {buffer.get(), size}, kProtocolVersion) || !IsUsable(records)) {
    throw Complaint(ExitCode::Failed, "the plug-in's description of the device cannot be read");
  }
  return records;
}

void Device::SendMode(std::int32_t mode_index, const ModeRecord& mode) {
  ControllerRecords records;
  // A packet's index is that of the mode in the list it is written from.
  records.mode_list.resize(static_cast<std::size_t>(mode_index) + 1);
  records.mode_list.back() = mode;
  const PackedBuffer packet = PackModePacket(records, mode_index, kProtocolVersion);
  controller_->UnpackModePacket(packet.bytes.get(), kProtocolVersion);
}

void Device::SendColors(const std::vector<PackedColor>& colors) {
  ControllerRecords records;
  records.color_table = colors;
  const PackedBuffer packet = PackColorTablePacket(records);
  controller_->UnpackColorTablePacket(packet.bytes.get());
}

}  // namespace zarnctl
