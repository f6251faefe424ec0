/// The generic lighting controller as a host sees it: 34 virtual slots, called by their position.
///
/// The order of the slots is the contract. Nothing is inserted before the destructor, nothing is overloaded, and
/// nothing is added that would move a slot. With compilers of the Itanium ABI the virtual destructor takes two
/// entries, 33 (complete) and 34 (deleting); with Microsoft's compiler it takes one, 33, whose argument tells whether
/// to free the object (1) or not (0).
///
/// Threads: a host may call any slot on any of its threads, with two exceptions. Slots 17 to 19 take no lock: call them
/// on one thread at a time, and never while slot 20 or 21 notifies. The destructor needs the controller to itself.
/// Slots 27 to 30 talk to the hardware and return when it has answered, slots 20 and 21 when the listeners have; all
/// others return at once.
///
/// Errors: device errors are never thrown and never reported here. What can leave a slot is the standard
/// out-of-memory exception, and the records are as they were when it does; from slots 20 and 21 also what a listener
/// throws.
///
/// Requests (slots 6, 21, 22) are carried out by the controller's worker thread, which sends whatever the records
/// hold at that moment. Requests of one kind coalesce, and one that is raised while the hardware operation of its
/// kind is running is absorbed by it. So change the records first and ask once; after a series of changes, end with
/// slot 27 or 30 on your own thread, which returns when the last value has been sent. It does not wait for a push that
/// the worker is at, which may send the rest of older values behind it: docs/hosts.md tells how to be sure. A request
/// raised while the worker is busy may die with the controller.
///
/// Buffers: a buffer handed out belongs to the caller, who releases it with `delete[]`. A buffer handed in stays the
/// caller's; it must have as many bytes as its first four (little-endian) claim, which bound what is read of it (the
/// one-colour packet always has 8). A buffer whose content does not fit into that, or a null one, is ignored whole.
/// Formats: docs/formats.md.
#pragma once

#include <cstdint>

#include "zarn_lighting/records.h"

/// Called with the context given at registration, on the thread that raised the notification. Must not raise another
/// one on the same controller.
using ChangeListenerFn = void (*)(void* context);

class RGBControllerInterface {
 public:
  /// 0: sizes the colour table to the zones and derives their views; a host has no need to call it.
  virtual void RebindZoneStorage() = 0;

  /// 1: the colour of a LED; black for an index beyond the colour table.
  virtual PackedColor FetchLedColor(std::uint32_t led_index) = 0;
  /// 2: replaces the colour of a LED; an index beyond the colour table is ignored. Requests no push.
  virtual void StoreLedColor(std::uint32_t led_index, PackedColor color) = 0;
  /// 3: paints every zone. Requests no push.
  virtual void PaintAllZones(PackedColor color) = 0;
  /// 4: paints one zone; an index outside the list is ignored. Requests no push.
  virtual void PaintZone(std::int32_t zone_index, PackedColor color) = 0;

  /// 5: the index of the active mode.
  virtual std::int32_t CurrentModeIndex() = 0;
  /// 6: makes a mode the active one and requests a mode push. Any index is stored; one outside the list sends nothing.
  virtual void ChooseMode(std::int32_t mode_index) = 0;

  /// 7: the whole description in the layout of `protocol_version`.
  virtual std::uint8_t* PackDescription(std::uint32_t protocol_version) = 0;
  /// 8: replaces texts, kind and active mode, and appends the modes, zones, LEDs and colours of a description. Its
  /// first field, total_size, must be its true size in bytes, or the buffer is ignored without a word.
  virtual void UnpackDescription(const std::uint8_t* buffer, std::uint32_t protocol_version) = 0;
  /// 9: one mode. An index outside the list gives a packet that its reader ignores.
  virtual std::uint8_t* PackModePacket(std::int32_t mode_index, std::uint32_t protocol_version) = 0;
  /// 10: replaces one mode and makes it the active one. Requests no push. total_size must be right, or the packet is
  /// ignored without a word.
  virtual void UnpackModePacket(const std::uint8_t* packet, std::uint32_t protocol_version) = 0;
  /// 11: the whole colour table.
  virtual std::uint8_t* PackColorTablePacket() = 0;
  /// 12: replaces the first colours of the table. Requests no push. total_size must be right, or the packet is ignored
  /// without a word.
  virtual void UnpackColorTablePacket(const std::uint8_t* packet) = 0;
  /// 13: the colours of one zone. An index outside the list gives a packet that its reader ignores.
  virtual std::uint8_t* PackZoneColorsPacket(std::int32_t zone_index) = 0;
  /// 14: replaces the first colours of one zone. Requests no push. total_size must be right, or the packet is ignored
  /// without a word.
  virtual void UnpackZoneColorsPacket(const std::uint8_t* packet) = 0;
  /// 15: the colour of one LED, 8 bytes. An index outside the list gives a packet that its reader ignores.
  virtual std::uint8_t* PackOneColorPacket(std::int32_t led_index) = 0;
  /// 16: replaces the colour of one LED. Requests no push.
  virtual void UnpackOneColorPacket(const std::uint8_t* packet) = 0;

  /// 17: registers a listener; the same one may be registered again. A null function is ignored.
  virtual void AddChangeListener(ChangeListenerFn listener, void* context) = 0;
  /// 18: removes the first listener registered with `context`.
  virtual void RemoveChangeListener(void* context) = 0;
  /// 19: removes all listeners.
  virtual void DropChangeListeners() = 0;
  /// 20: calls every listener, in the order of registration, on this thread.
  virtual void NotifyChangeListeners() = 0;

  /// 21: asks the worker to send the colours, then notifies the listeners.
  virtual void RequestColorPush() = 0;
  /// 22: asks the worker to apply the active mode.
  virtual void RequestModePush() = 0;
  /// 23: nothing in this system.
  virtual void RequestAuxAction() = 0;
  /// 24: the body of the worker thread; returns at once for anyone else.
  virtual void RunWorker() = 0;

  /// 25: appends the device's zones and LEDs. Done at construction; a second call appends them again.
  virtual void DefineLayout() = 0;
  /// 26: nothing in this system.
  virtual void DeviceSpareHook() = 0;
  /// 27: sends the colour table, now, on this thread.
  virtual void WriteColorsToDevice() = 0;
  /// 28: sends the colours of one zone, now, on this thread; the devices here send all of them.
  virtual void WriteZoneToDevice(std::int32_t zone_index) = 0;
  /// 29: sends the colour of one LED, now, on this thread; only the HID keyboard can do less than all.
  virtual void WriteLedToDevice(std::int32_t led_index) = 0;
  /// 30: applies the active mode, now, on this thread.
  virtual void WriteModeToDevice() = 0;
  /// 31: nothing in this system.
  virtual void DeviceAuxAction() = 0;
  /// 32: makes the per-LED mode the active one. Requests no push.
  virtual void SelectFirstMode() = 0;

  /// 33: stops the worker and destroys the device controller. A worker that is waiting first carries out what has been
  /// requested; one that is busy ends after what it is doing. Returns when it has ended; afterwards nothing talks to
  /// the hardware. On the worker thread itself, which no host code runs on, it would end the process.
  virtual ~RGBControllerInterface() = default;
};
