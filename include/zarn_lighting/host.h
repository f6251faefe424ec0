/// The host library, zarn_host: loads the lighting plug-in, and packs and unpacks what its devices and a host exchange.
///
///     auto plugin = zarn::host::Plugin::Load("/usr/lib/libzarn_lighting.so");
///     if (!plugin) return Complain(plugin.error().text);
///     auto device = plugin->Create("ZarnECKeyboard");  // or a name that Discover answers
///     if (device) device->WriteMode();
///
/// For C++17 and later. Link the static library zarn_host, which was built with the same compiler family and standard
/// library as the host; the plug-in is loaded when the program runs.
///
/// Errors are values, and no exception leaves this library, not even for memory that ran out. Any thread may call;
/// nobody destroys or moves a Device while another thread uses it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "zarn_lighting/records.h"
#include "zarn_lighting/rgb_controller_interface.h"

namespace zarn::host {

/// What kind of thing went wrong. The numbers stay as they are.
enum class Failure : std::int32_t {
  OutOfMemory = 1,
  NotLoaded = 2,      // the file could not be loaded as a library
  NoExport = 3,       // the library has no function of that name: it is no lighting plug-in
  BadAnswer = 4,      // the plug-in's answer contradicts itself, or could not be read
  UnknownDevice = 5,  // no device of that name can be made
  Refused = 6,        // the device's records did not take the values
  Threw = 7           // anything else that the plug-in or the system threw
};

struct Error {
  Failure failure = Failure::OutOfMemory;
  std::string text;  // one line for people, in UTF-8 if paths and system messages are; empty when memory ran out
};

/// A value, or why there is none. Ask with operator bool first.
template <typename Value>
class Result {
 public:
  Result(Value value) noexcept : held_(std::move(value)) {}  // NOLINT(google-explicit-constructor)
  Result(Error error) noexcept : held_(std::move(error)) {}  // NOLINT(google-explicit-constructor)

  explicit operator bool() const noexcept { return std::holds_alternative<Value>(held_); }

  Value& operator*() noexcept { return *std::get_if<Value>(&held_); }
  const Value& operator*() const noexcept { return *std::get_if<Value>(&held_); }
  Value* operator->() noexcept { return std::get_if<Value>(&held_); }
  const Value* operator->() const noexcept { return std::get_if<Value>(&held_); }

  /// For a result that holds no value.
  const Error& error() const noexcept { return *std::get_if<Error>(&held_); }

 private:
  std::variant<Value, Error> held_;
};

/// An error, or nothing when all went well.
using Outcome = std::optional<Error>;

/// What the machine has, by the plug-in's own discovery.
struct Discovery {
  std::vector<std::string> names;    // the devices, as Create takes them
  std::uint32_t interface_type = 0;  // 1: a HID keyboard; the embedded controller was not asked. 3: it was
  std::string hardware_id;           // with type 1, such as "USB\VID_1209&PID_0001"; else empty
  std::string usage_page;            // likewise, such as "FF5A"
};

/// A lighting device. Owns its controller. Destruction waits for what is being sent.
class Device {
 public:
  explicit Device(std::unique_ptr<RGBControllerInterface> controller) noexcept : controller_(std::move(controller)) {}

  /// What the device says of itself now: texts, modes with their settings, zones, LEDs, colours (slot 7).
  Result<ControllerRecords> Describe() const noexcept;

  /// Replaces the mode at an index of the description's list and makes it the active one (slot 10). Nothing is sent.
  /// Refused, with nothing changed, for an index outside the list. Refused also when another thread changed the mode
  /// meanwhile. After any other error the device may have the new mode.
  Outcome SetMode(std::int32_t index, const ModeRecord& mode) noexcept;
  /// Replaces the first colours of the colour table, as many as there are (slot 12). Nothing is sent. Refused, with
  /// nothing changed, for no colours or more than the table has; otherwise as SetMode.
  Outcome SetColors(const std::vector<PackedColor>& colors) noexcept;

  /// Sends the active mode (slot 30) or the colours (slot 27) on this thread. An error means that the call threw. What
  /// the hardware refuses shows only in the plug-in's log.
  Outcome WriteMode() noexcept;
  Outcome WriteColors() noexcept;

  /// All other slots. They throw what rgb_controller_interface.h says.
  RGBControllerInterface& controller() const noexcept { return *controller_; }

 private:
  std::unique_ptr<RGBControllerInterface> controller_;
};

class Library;

/// The plug-in. Stays loaded to the end of the process, even without this object and its copies: a library loaded again
/// would start a second log.
class Plugin {
 public:
  /// Loads a file by its path. A bare name is looked for beside the program and in the system's own folder on Windows,
  /// and where dlopen looks on Linux; give a full path wherever you know one.
  static Result<Plugin> Load(const std::filesystem::path& file) noexcept;

  /// Asks which devices there are. Call it before Create: a HID keyboard has no zones otherwise.
  Result<Discovery> Discover() const noexcept;

  /// Creates the device that discovery reports by this name. After a failure a half-made device may stay in memory,
  /// since no export frees it.
  Result<Device> Create(const std::string& name) const noexcept;

 private:
  explicit Plugin(std::shared_ptr<const Library> library) noexcept : library_(std::move(library)) {}

  std::shared_ptr<const Library> library_;
};

}  // namespace zarn::host
