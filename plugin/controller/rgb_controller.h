/// The base of every lighting device: the slots that are the same for all devices, and the update worker. A device
/// class fills the records in its constructor and supplies slots 25, 27 and 30, and 29 if it can send one LED alone.
///
/// Locks: `records_lock` guards the records. Device classes take it while they copy what a push needs, never during a
/// hardware call. `listener_lock` is held while listeners run; they may call slots that take another lock. Nothing
/// takes `listener_lock` while it holds another lock. The update worker has a lock of its own.
///
/// A device class is final, and its destructor first calls StopWorker: until then the worker calls slots 27 and 30 on
/// its own thread. The device controller is a bare pointer: when the device class's constructor throws, its destructor
/// does not run, and the host keeps the device controller. Slots 27 to 30 catch everything: the worker could tell
/// nobody of an error, and memory that runs out in a push must not end the host.
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

  void DeviceSpareHook() override {}
  void WriteZoneToDevice(std::int32_t /*zone_index*/) override { WriteColorsToDevice(); }
  void WriteLedToDevice(std::int32_t /*led_index*/) override { WriteColorsToDevice(); }
  void DeviceAuxAction() override {}
  void SelectFirstMode() override;

 protected:
  /// Starts the worker. Throws std::system_error when it cannot be started.
  RGBController();
  ~RGBController() override = default;

  /// Stops and joins the worker; see UpdateWorker::Stop. The first act of a device class's destructor.
  void StopWorker() { update_worker.Stop(); }

  /// For DefineLayout: appends one zone of `led_count` LEDs in a row, labelled "<label> 1", "<label> 2" and so on, and
  /// rebinds the storage. Nothing has changed when memory runs out.
  void AppendZone(const std::string& label, std::uint32_t led_count);

  /// Copies of what a push needs: the active mode, or nothing while its index is outside the list; and the colours with
  /// the brightness of the first mode, even while another one is active.
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
