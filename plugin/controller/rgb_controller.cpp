#include "controller/rgb_controller.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "base/little_endian.h"
#include "controller/description_format.h"
#include "controller/packet_formats.h"
#include "controller/zone_storage.h"

namespace {

/// A host's buffer, as long as its first field, total_size, says.
std::span<const std::uint8_t> SizedBuffer(const std::uint8_t* buffer) {
  if (buffer == nullptr) return {};
  return {buffer, static_cast<std::size_t>(FromLittleEndian({buffer, sizeof(std::uint32_t)}))};
}

}  // namespace

RGBController::RGBController() { update_worker.Start(*this); }

void RGBController::AppendZone(const std::string& label, std::uint32_t led_count) {
  ZoneRecord zone;
  zone.label = label;
  zone.zone_kind = ZoneKind::Linear;
  zone.led_total = zone.led_total_min = zone.led_total_max = led_count;

  const std::lock_guard lock(records_lock);
  ControllerRecords updated = *this;
  updated.zone_list.push_back(std::move(zone));
  for (std::uint32_t i = 1; i <= led_count; ++i) {
    updated.led_list.push_back({.label = label + " " + std::to_string(i)});
  }
  BindZoneStorage(updated);
  static_cast<ControllerRecords&>(*this) = std::move(updated);
  RebindZoneStorage();
}

std::optional<ModeRecord> RGBController::ActiveMode() {
  const std::lock_guard lock(records_lock);
  const ModeRecord* const mode = EntryAt(mode_list, current_mode);
  return mode != nullptr ? std::optional(*mode) : std::nullopt;
}

std::pair<std::vector<PackedColor>, std::uint32_t> RGBController::ColorsAndBrightness() {
  const std::lock_guard lock(records_lock);
  return {color_table, mode_list.empty() ? 0 : mode_list.front().brightness_setting};
}

void RGBController::RebindZoneStorage() {
  const std::lock_guard lock(records_lock);
  BindZoneStorage(*this);
}

PackedColor RGBController::FetchLedColor(std::uint32_t led_index) {
  const std::lock_guard lock(records_lock);
  const PackedColor* const color = EntryAt(color_table, led_index);
  return color != nullptr ? *color : 0;
}

void RGBController::StoreLedColor(std::uint32_t led_index, PackedColor color) {
  const std::lock_guard lock(records_lock);
  if (PackedColor* const entry = EntryAt(color_table, led_index)) *entry = color;
}

void RGBController::PaintAllZones(PackedColor color) {
  const std::lock_guard lock(records_lock);
  for (std::size_t zone = 0; zone < zone_list.size(); ++zone) PaintZone(static_cast<std::int32_t>(zone), color);
}

void RGBController::PaintZone(std::int32_t zone_index, PackedColor color) {
  const std::lock_guard lock(records_lock);
  const ZoneRecord* const zone = EntryAt(zone_list, zone_index);
  if (zone == nullptr || zone->color_view == nullptr) return;
  // The total may claim more than the table has: it was changed since, or the sum of all totals wrapped.
  std::fill_n(zone->color_view, std::min<std::size_t>(zone->led_total, color_table.size() - zone->first_index), color);
}

std::int32_t RGBController::CurrentModeIndex() {
  const std::lock_guard lock(records_lock);
  return current_mode;
}

void RGBController::ChooseMode(std::int32_t mode_index) {
  {
    const std::lock_guard lock(records_lock);
    current_mode = mode_index;
  }
  RequestModePush();
}

std::uint8_t* RGBController::PackDescription(std::uint32_t protocol_version) {
  const std::lock_guard lock(records_lock);
  return ::PackDescription(*this, protocol_version).bytes.release();
}

void RGBController::UnpackDescription(const std::uint8_t* buffer, std::uint32_t protocol_version) {
  const std::lock_guard lock(records_lock);
  if (::UnpackDescription(*this, SizedBuffer(buffer), protocol_version)) RebindZoneStorage();
}

std::uint8_t* RGBController::PackModePacket(std::int32_t mode_index, std::uint32_t protocol_version) {
  const std::lock_guard lock(records_lock);
  return ::PackModePacket(*this, mode_index, protocol_version).bytes.release();
}

void RGBController::UnpackModePacket(const std::uint8_t* packet, std::uint32_t protocol_version) {
  const std::lock_guard lock(records_lock);
  ::UnpackModePacket(*this, SizedBuffer(packet), protocol_version);
}

std::uint8_t* RGBController::PackColorTablePacket() {
  const std::lock_guard lock(records_lock);
  return ::PackColorTablePacket(color_table).bytes.release();
}

void RGBController::UnpackColorTablePacket(const std::uint8_t* packet) {
  const std::lock_guard lock(records_lock);
  ::UnpackColorTablePacket(*this, SizedBuffer(packet));
}

std::uint8_t* RGBController::PackZoneColorsPacket(std::int32_t zone_index) {
  const std::lock_guard lock(records_lock);
  return ::PackZoneColorsPacket(*this, zone_index).bytes.release();
}

void RGBController::UnpackZoneColorsPacket(const std::uint8_t* packet) {
  const std::lock_guard lock(records_lock);
  ::UnpackZoneColorsPacket(*this, SizedBuffer(packet));
}

std::uint8_t* RGBController::PackOneColorPacket(std::int32_t led_index) {
  const std::lock_guard lock(records_lock);
  return ::PackOneColorPacket(*this, led_index).bytes.release();
}

void RGBController::UnpackOneColorPacket(const std::uint8_t* packet) {
  if (packet == nullptr) return;
  const std::lock_guard lock(records_lock);
  ::UnpackOneColorPacket(*this, {packet, kOneColorPacketSize});
}

void RGBController::AddChangeListener(ChangeListenerFn listener, void* context) {
  if (listener == nullptr) return;
  // Room in both first, so that memory running out cannot leave one list longer than the other.
  listener_fns.reserve(listener_fns.size() + 1);
  listener_contexts.reserve(listener_contexts.size() + 1);
  listener_fns.push_back(listener);
  listener_contexts.push_back(context);
}

void RGBController::RemoveChangeListener(void* context) {
  const auto found = std::find(listener_contexts.begin(), listener_contexts.end(), context);
  if (found == listener_contexts.end()) return;
  listener_fns.erase(listener_fns.begin() + (found - listener_contexts.begin()));
  listener_contexts.erase(found);
}

void RGBController::DropChangeListeners() {
  listener_fns.clear();
  listener_contexts.clear();
}

void RGBController::NotifyChangeListeners() {
  const std::lock_guard lock(listener_lock);
  // Copies: a listener that breaks the rules and changes the lists must not pull them from under this loop.
  const std::vector<ChangeListenerFn> fns = listener_fns;
  const std::vector<void*> contexts = listener_contexts;
  for (std::size_t i = 0; i < fns.size(); ++i) fns[i](contexts[i]);
}

void RGBController::RequestColorPush() {
  update_worker.RequestColorPush();
  NotifyChangeListeners();
}

void RGBController::RequestModePush() { update_worker.RequestModePush(); }

void RGBController::RequestAuxAction() { DeviceAuxAction(); }

void RGBController::RunWorker() { update_worker.Run(*this); }

void RGBController::SelectFirstMode() {
  const std::lock_guard lock(records_lock);
  current_mode = 0;
}
