/// What lies under the layer: one computer, real or not.
///
/// Every platform call of the layer ends in the machine in use. A machine answers from any thread, several at
/// once, and synchronises itself; its answers are values, but for the connection to a HID device. An operation that
/// throws fails the platform call it serves, in that call's own way.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/standin/system_api.h"
#include "platform/standin/text.h"

namespace platform {

/// SQL-like null, as the management service has it (VT_NULL).
///
/// Its destructor is no default one. Otherwise the variant of libstdc++ 12 would leave out its test for holding
/// nothing, and a Value would crash when memory runs out while it is copied.
struct Null {
  Null() = default;
  Null(const Null&) = default;
  Null& operator=(const Null&) = default;
  ~Null() {}  // NOLINT(modernize-use-equals-default)
  friend bool operator==(const Null&, const Null&) { return true; }
};

using Bytes = std::vector<std::uint8_t>;

/// One value as it crosses the management service; the alternatives stand for VT_EMPTY, VT_NULL, VT_I4, VT_UI1,
/// VT_UI4, VT_UI8, VT_BSTR and VT_ARRAY|VT_UI1.
using Value =
    std::variant<std::monostate, Null, std::int32_t, std::uint8_t, std::uint32_t, std::uint64_t, std::wstring, Bytes>;
using NamedValues = std::map<std::wstring, Value, WithoutCase>;

/// The firmware class ZarnGamingFunction as the management service publishes it.
struct FirmwareClass {
  struct Method {
    std::wstring name;
    bool has_input = true;
    /// As the firmware describes it, "2 SetGamingLED(in uint8 gmInput[], out uint32 gmOutput)"; empty where it does
    /// not.
    std::string declaration = {};
  };
  std::vector<Method> methods;
  /// The "InstanceName" of each instance, in the order of enumeration; any type of value.
  std::vector<Value> instance_names;
};

/// A code of the management service as a result; the platform has them as an enumeration.
constexpr HRESULT Status(auto code) { return static_cast<HRESULT>(code); }

struct FirmwareAnswer {
  HRESULT status = S_OK;
  /// The out-parameters, empty on failure.
  NamedValues out;
};

/// The structure table and the version of the SMBIOS standard, as the management service has them: as a rule bytes for
/// the table and numbers for the version.
struct SmbiosTable {
  Value data;
  Value major;
  Value minor;
};

/// A HID device as the system knows it without asking it anything.
struct HidDevice {
  /// Names it while it stays plugged in.
  std::wstring path;
  std::uint16_t vendor = 0;
  std::uint16_t product = 0;
  std::uint16_t version = 0;
  Bytes report_descriptor;
};

/// An opened HID device: that very one, never another that was plugged in at its place. The first exchange touches the
/// device itself. Exchanges may block; several threads may be inside at once. Both answer ERROR_SUCCESS or the error
/// code of the failure, ERROR_DEVICE_NOT_CONNECTED after an unplug.
class HidConnection {
 public:
  virtual ~HidConnection() = default;

  /// Sends a feature report; byte 0 is its id, or 0 where reports have none.
  virtual LONG SetFeature(std::span<const std::uint8_t> report) = 0;
  /// Reads the feature report whose id is byte 0 of `report` into it. What the device leaves out stays as it was.
  virtual LONG GetFeature(std::span<std::uint8_t> report) = 0;
};

struct OpenedHidDevice {
  /// Why it could not be opened, or ERROR_SUCCESS: then there is a connection.
  LONG error = ERROR_FILE_NOT_FOUND;
  HidDevice device;
  std::shared_ptr<HidConnection> connection;
};

/// By itself an empty computer: it has a clock, and nothing else is there.
class Machine {
 public:
  virtual ~Machine() = default;

  /// Whether the key is there, below HKEY_LOCAL_MACHINE. Asked when a key is opened. The names of keys and values
  /// arrive as the caller wrote them and compare without case (EqualsWithoutCase in text.h).
  virtual bool HasRegistryKey(std::wstring_view /*key*/) { return false; }
  /// The bytes of a value, whatever its registry type; none when it is missing.
  virtual std::optional<Bytes> RegistryValue(std::wstring_view /*key*/, std::wstring_view /*name*/) { return {}; }

  virtual std::optional<std::wstring> EnvironmentVariable(std::wstring_view /*name*/) { return {}; }
  /// The user that runs the process; none when it cannot be told.
  virtual std::optional<std::wstring> UserName() { return {}; }

  /// Local time, from one reading of the clock. By itself the computer's own, in its own time zone.
  virtual SYSTEMTIME LocalTime();
  /// Pauses the calling thread; a machine of tests may only note that it was asked to.
  virtual void Sleep(std::uint32_t milliseconds);

  /// The structure table; none when this machine has none.
  virtual std::optional<SmbiosTable> ReadSmbiosTable() { return {}; }
  /// The firmware class; none when it is not registered here.
  virtual std::optional<FirmwareClass> FindFirmwareClass() { return {}; }
  /// Runs a method, one of the class's, on one of its instances. May block; two threads may be inside at once.
  virtual FirmwareAnswer CallFirmware(const std::wstring& instance_name, const std::wstring& method,
                                      const NamedValues& in);

  /// The HID devices that are plugged in, in an order that stays as long as they do.
  virtual std::vector<HidDevice> HidDevices() { return {}; }
  /// Opens a device by its path: it must be there, and this process must be allowed to exchange reports with it.
  /// Exchanges none.
  virtual OpenedHidDevice OpenHidDevice(const std::wstring& /*path*/) { return {}; }
};

/// A machine that stands for this computer; each system has its own.
std::shared_ptr<Machine> MakeThisComputer();

/// A variable of the process's environment, for machines that have none of their own; nothing where the platform's own
/// calls answer. PROGRAMDATA must be a path from the root in UTF-8. If it is not, zarn in the user's folder for states
/// ($XDG_STATE_HOME, or ~/.local/state) takes its place.
std::optional<std::wstring> ProcessVariable(std::wstring_view name);

/// Puts `machine` under the layer, for the whole process. Refuses (false) while anything that platform calls
/// handed out is still alive. Until the first call the process runs on this computer.
bool UseMachine(std::shared_ptr<Machine> machine);

/// The machine in use, never null.
std::shared_ptr<Machine> CurrentMachine();

}  // namespace platform
