/// The base of every lighting device: the slots that are the same for all devices, over the records, and the update
/// worker. A device class fills the records in its constructor and supplies slots 25 to 30 and 32.
///
/// Locks: `records_lock` guards the records; device classes take it while they copy what a push needs, never during a
/// hardware call. `listener_lock` is held while listeners run. The worker's lock is its own. The controller itself
/// never holds two of them together. A listener may call slots that take another one; nothing takes `listener_lock`
/// while it holds one of the others.
///
/// A device class is final, and its destructor first calls StopWorker: the worker calls the slots 27 and 30 on its own
/// thread until then. It owns its device controller by a bare pointer: when its constructor throws, its destructor does
/// not run, and the host keeps what it handed in. Slots 27 to 30 catch everything: a push has nobody to tell of an
/// error, and memory that runs out in one must not end the host.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "controller/update_worker.h"
#include "zarn_lighting/records.h"
#include "zarn_lighting/rgb_controller_interface.h"

class RGBController : public RGBControllerInterface, protected ControllerRecords {
 public:
  RGBController(const RGBController&) = delete;
  RGBController& operator=(const RGBController&) = delete;

  void RebindZoneStorage() override;
  PackedColor FetchLedColor(std::uint32_t led_index) override;
  void StoreLedColor(std::uint32_t led_index, PackedColor color) override;
  void PaintAllZones(PackedColor color) override;
  void PaintZone(std::int32_t zone_index, PackedColor color) override;
  std::int32_t CurrentModeIndex() override;
  void ChooseMode(std::int32_t mode_index) override;

  std::uint8_t* PackDescription(std::uint32_t protocol_version) override;
  void UnpackDescription(const std::uint8_t* buffer, std::uint32_t protocol_version) override;
  std::uint8_t* PackModePacket(std::int32_t mode_index, std::uint32_t protocol_version) override;
  void UnpackModePacket(const std::uint8_t* packet, std::uint32_t protocol_version) override;
  std::uint8_t* PackColorTablePacket() override;
  void UnpackColorTablePacket(const std::uint8_t* packet) override;
  std::uint8_t* PackZoneColorsPacket(std::int32_t zone_index) override;
  void UnpackZoneColorsPacket(const std::uint8_t* packet) override;
  std::uint8_t* PackOneColorPacket(std::int32_t led_index) override;
  void UnpackOneColorPacket(const std::uint8_t* packet) override;

  void AddChangeListener(ChangeListenerFn listener, void* context) override;
  void RemoveChangeListener(void* context) override;
  void DropChangeListeners() override;
  void NotifyChangeListeners() override;

  void RequestColorPush() override;
  void RequestModePush() override;
  void RequestAuxAction() override;
  void RunWorker() override;
  void DeviceAuxAction() override {}

 protected:
  /// Starts the worker. Throws std::system_error when it cannot be started.
  RGBController();
  ~RGBController() override = default;

  /// Stops and joins the worker; see UpdateWorker::Stop. The first act of a device class's destructor.
  void StopWorker() { update_worker.Stop(); }

  /// Appends one zone of `led_count` LEDs in a row, labelled "<label> 1", "<label> 2" and so on, and rebinds the
  /// storage, for DefineLayout. Nothing has changed when memory runs out.
  void AppendZone(const std::string& label, std::uint32_t led_count);

  /// What slot 32 is on every device.
  void ActivateFirstMode();

  /// Copies of what a push needs: the active mode, or nothing while its index is outside the list; and the colours,
  /// with the brightness of the first mode, whichever is active.
  std::optional<ModeRecord> ActiveMode();
  std::pair<std::vector<PackedColor>, std::uint32_t> ColorsAndBrightness();

  /// Recursive, because slots call slots.
  std::recursive_mutex records_lock;

 private:
  UpdateWorker update_worker;

  std::mutex listener_lock;
  std::vector<ChangeListenerFn> listener_fns;
  std::vector<void*> listener_contexts;  // same positions as listener_fns
};
