// The plug-in as a Windows host meets it: found beside the program, loaded, driven by slot number, and gone again.
// There is no such keyboard where this runs, so what is seen is the device that a missing firmware record gives.
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "controller/rgb_controller_interface.h"

class ZarnECKeyboardController;

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

class Reader {
 public:
  explicit Reader(const std::uint8_t* bytes) : bytes_(bytes) {}

  std::uint32_t Number(std::size_t width) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) value |= static_cast<std::uint32_t>(bytes_[position_++]) << (8 * i);
    return value;
  }
  std::string Text() {
    const std::size_t length = Number(2);
    const std::string text(reinterpret_cast<const char*>(bytes_ + position_), length - 1);
    position_ += length;
    return text;
  }
  void Skip(std::size_t bytes) { position_ += bytes; }
  std::size_t position() const { return position_; }

 private:
  const std::uint8_t* bytes_;
  std::size_t position_ = 0;
};

void CheckDescription(const std::uint8_t* bytes) {
  constexpr std::size_t kTotalSize = 689;
  constexpr std::array kModes = {"Direct",   "STATIC", "BREATHING", "NEON",     "WAVE",
                                 "SHIFTING", "ZOOM",   "METEOR",    "TWINKLING"};
  Reader reader(bytes);
  if (!CHECK(reader.Number(4) == kTotalSize)) return;
  CHECK(reader.Number(4) == 5);
  CHECK(reader.Text() == "Zarn EC Keyboard Device");
  CHECK(reader.Text() == "Zarn");
  CHECK(reader.Text() == "Zarn EC Keyboard Device");
  for (int info = 1; info <= 3; ++info) CHECK(reader.Text().empty());

  if (!CHECK(reader.Number(2) == kModes.size())) return;
  CHECK(reader.Number(4) == 0);
  for (const char* const label : kModes) {
    CHECK(reader.Text() == label);
    reader.Skip(std::size_t{12} * 4);
    reader.Skip(reader.Number(2) * std::size_t{4});
  }

  if (!CHECK(reader.Number(2) == 1)) return;
  CHECK(reader.Text() == "Keyboard Backlight zone");
  CHECK(reader.Number(4) == 1);
  for (int led_count = 0; led_count < 3; ++led_count) CHECK(reader.Number(4) == 0);
  CHECK(reader.Number(2) == 0);

  CHECK(reader.Number(2) == 0);
  CHECK(reader.Number(2) == 0);
  CHECK(reader.position() == kTotalSize);
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
  if (CHECK(mode != nullptr)) {
    Reader reader(mode.get());
    reader.Skip(4);
    CHECK(reader.Number(4) == 2);
    CHECK(reader.Text() == "BREATHING");
  }

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

  const auto create_controller =
      Export<ZarnECKeyboardController* (*)()>(library, "CreateZarnECKeyboardControllerClassInstance");
  const auto create_generic_controller = Export<RGBControllerInterface* (*)(ZarnECKeyboardController*)>(
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
