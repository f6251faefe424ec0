// The plug-in as a Windows host meets it: found beside the program, loaded, driven by slot number, and gone again.
// There is no such keyboard where this runs, so what is seen is the device that a missing firmware record gives.
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "controller/description_format.h"
#include "discovery/lighting_plugin.h"

namespace {

int g_passed = 0;
int g_failed = 0;

bool Check(bool holds, const char* what, int line) {
  ++(holds ? g_passed : g_failed);
  if (!holds) std::printf("dll_smoke.cpp:%d: does not hold: %s\n", line, what);
  return holds;
}

#define CHECK(condition) Check((condition), #condition, __LINE__)

std::wstring PathBesideThisProgram(const wchar_t* name) {
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::wstring program(path.data(), length);
  return program.substr(0, program.find_last_of(L'\\') + 1) + name;
}

template <typename Function>
Function Export(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

/// What a host does that knows nothing but the position of an operation.
template <typename Result, typename... Arguments>
Result CallSlot(RGBControllerInterface* controller, std::size_t slot, Arguments... arguments) {
  using Function = Result (*)(RGBControllerInterface*, Arguments...);
  void* const* const table = *reinterpret_cast<void* const* const*>(controller);
  return reinterpret_cast<Function>(table[slot])(controller, arguments...);
}

constexpr std::size_t kFetchLedColor = 1;
constexpr std::size_t kStoreLedColor = 2;
constexpr std::size_t kCurrentModeIndex = 5;
constexpr std::size_t kChooseMode = 6;
constexpr std::size_t kPackDescription = 7;
constexpr std::size_t kPackModePacket = 9;
constexpr std::size_t kWriteModeToDevice = 30;
constexpr std::size_t kSelectFirstMode = 32;
constexpr std::size_t kDeletingDestructor = 34;

void CheckDescription(const std::uint8_t* bytes) {
  ControllerRecords records;
  if (!CHECK(UnpackDescription(records, {bytes, 689}, 3))) return;
  CHECK(records.title == "Zarn EC Keyboard Device" && records.maker_name == "Zarn");
  std::string modes;
  for (const ModeRecord& mode : records.mode_list) modes += mode.label + " ";
  CHECK(modes == "Direct STATIC BREATHING NEON WAVE SHIFTING ZOOM METEOR TWINKLING ");
  CHECK(records.zone_list.size() == 1 && records.zone_list[0].label == "Keyboard Backlight zone");
  CHECK(records.led_list.empty() && records.color_table.empty());
  const PackedBuffer again = PackDescription(records, 3);
  CHECK(again.size == 689 && std::equal(again.bytes.get(), again.bytes.get() + again.size, bytes));
}

void CheckDiscovery(HMODULE library) {
  const auto check = Export<decltype(&CheckDeviceStatus)>(library, "CheckDeviceStatus");
  if (!CHECK(check != nullptr)) return;
  std::wstring names = L"as it was";
  std::wstring hardware_id = names;
  std::wstring usage_page = names;
  std::uint32_t interface_type = 0;
  CHECK(check(names, interface_type, hardware_id, usage_page) == 0);
  CHECK(names == L"as it was" && interface_type == 3 && hardware_id.empty() && usage_page.empty());
}

void DriveController(RGBControllerInterface* controller) {
  CHECK(CallSlot<std::int32_t>(controller, kCurrentModeIndex) == 0);
  CHECK(controller->CurrentModeIndex() == 0);

  const std::unique_ptr<std::uint8_t[]> description(
      CallSlot<std::uint8_t*>(controller, kPackDescription, std::uint32_t{3}));
  if (CHECK(description != nullptr)) CheckDescription(description.get());

  CallSlot<void>(controller, kChooseMode, std::int32_t{2});
  CHECK(CallSlot<std::int32_t>(controller, kCurrentModeIndex) == 2);
  CHECK(controller->CurrentModeIndex() == 2);
  CallSlot<void>(controller, kWriteModeToDevice);

  const std::unique_ptr<std::uint8_t[]> mode(
      CallSlot<std::uint8_t*>(controller, kPackModePacket, std::int32_t{2}, std::uint32_t{3}));
  CHECK(mode != nullptr && mode[4] == 2 && std::memcmp(&mode[8], "\x0A\0BREATHING", 12) == 0);

  CallSlot<void>(controller, kStoreLedColor, std::uint32_t{0}, std::uint32_t{0xFF});
  CHECK(CallSlot<std::uint32_t>(controller, kFetchLedColor, std::uint32_t{0}) == 0);
  CHECK(controller->FetchLedColor(0) == 0);

  CallSlot<void>(controller, kSelectFirstMode);
  CHECK(controller->CurrentModeIndex() == 0);
}

void LoadDriveUnload() {
  const std::wstring path = PathBesideThisProgram(L"zarn_lighting.dll");
  const HMODULE library = LoadLibraryW(path.c_str());
  if (!CHECK(library != nullptr)) return;

  CheckDiscovery(library);
  const auto create_controller = Export<decltype(&CreateZarnECKeyboardControllerClassInstance)>(
      library, "CreateZarnECKeyboardControllerClassInstance");
  const auto create_generic_controller = Export<decltype(&CreateRGBController_ZarnECKeyboardClassInstance)>(
      library, "CreateRGBController_ZarnECKeyboardClassInstance");
  if (!CHECK(create_controller != nullptr) || !CHECK(create_generic_controller != nullptr)) return;

  ZarnECKeyboardController* const device_controller = create_controller();
  if (!CHECK(device_controller != nullptr)) return;
  RGBControllerInterface* const controller = create_generic_controller(device_controller);
  if (!CHECK(controller != nullptr)) return;

  DriveController(controller);
  CallSlot<void>(controller, kDeletingDestructor);

  CHECK(FreeLibrary(library) != 0);
  CHECK(GetModuleHandleW(L"zarn_lighting.dll") == nullptr);
}

}  // namespace

int main() {
  LoadDriveUnload();
  std::printf("%d passed, %d failed\n", g_passed, g_failed);
  return g_failed == 0 ? 0 : 1;
}
