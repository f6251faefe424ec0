/// A host without the host library: loads the plug-in, discovers the lighting devices, and turns their LEDs red.
///
/// host LIBRARY [DEVICE...]: drives the named devices instead of the discovered ones.

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <zarn_lighting/plugin.h>

namespace {

#if defined(_WIN32)
void* Load(const char* path) { return LoadLibraryW(std::filesystem::absolute(path).c_str()); }
void* AddressOf(void* library, const std::string& name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name.c_str()));
}
#else
void* Load(const char* path) { return dlopen(path, RTLD_NOW); }
void* AddressOf(void* library, const std::string& name) { return dlsym(library, name.c_str()); }
#endif

/// A function by its exported name. The library stays loaded to the end of the process.
template <typename Function>
Function* Find(void* library, const std::string& name) {
  void* const address = AddressOf(library, name);
  if (address == nullptr) throw std::runtime_error("the plug-in has no export " + name);
  return reinterpret_cast<Function*>(address);
}

std::vector<std::string> Discover(void* library) {
  std::wstring names;
  std::uint32_t interface_type = 0;
  std::wstring hardware_id;
  std::wstring usage_page;
  const auto check = Find<decltype(CheckDeviceStatus)>(library, "CheckDeviceStatus");
  const std::int32_t count = check(names, interface_type, hardware_id, usage_page);
  std::vector<std::string> devices;
  // Go by the count: without devices `names` may hold anything.
  for (std::size_t begin = 0; static_cast<std::int32_t>(devices.size()) < count;) {
    const std::size_t end = std::min(names.find(L',', begin), names.size());
    devices.emplace_back(names.begin() + static_cast<std::ptrdiff_t>(begin),
                         names.begin() + static_cast<std::ptrdiff_t>(end));
    begin = end + 1;
  }
  return devices;
}

/// The generic controller owns the device controller that it is made from.
template <typename Controller>
std::unique_ptr<RGBControllerInterface> CreateAs(void* library, const std::string& device) {
  const auto make_controller = Find<Controller*()>(library, "Create" + device + "ControllerClassInstance");
  const auto make_device =
      Find<RGBControllerInterface*(Controller*)>(library, "CreateRGBController_" + device + "ClassInstance");
  return std::unique_ptr<RGBControllerInterface>(make_device(make_controller()));
}

std::unique_ptr<RGBControllerInterface> Create(void* library, const std::string& device) {
  if (device == "ZarnECGlobal") return CreateAs<ZarnECGlobalController>(library, device);
  if (device == "ZarnECKeyboard") return CreateAs<ZarnECKeyboardController>(library, device);
  if (device == "ZarnHIDKeyboard") return CreateAs<ZarnHIDKeyboardController>(library, device);
  throw std::runtime_error(device + ": no such device");
}

void TurnRed(void* library, const std::string& name) {
  const auto device = Create(library, name);
  // Change the records first, then ask once: the worker sends what the records hold when it begins.
  device->PaintAllZones(0x0000FF);
  device->SelectFirstMode();
  device->RequestColorPush();
  // A description's first four bytes are its size.
  const std::unique_ptr<std::uint8_t[]> description(device->PackDescription(3));
  std::cout << name << ": a description of " << (description[0] | description[1] << 8) << " bytes\n";
  // Send the last colours on this thread, because a request to a busy worker may be lost.
  device->WriteColorsToDevice();
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 2) throw std::runtime_error("usage: host LIBRARY [DEVICE...]");
  void* const library = Load(argv[1]);
  if (library == nullptr) throw std::runtime_error(std::string(argv[1]) + " cannot be loaded");
  std::vector<std::string> devices = Discover(library);
  std::cout << devices.size() << " lighting devices\n";
  if (argc > 2) devices.assign(argv + 2, argv + argc);
  for (const std::string& device : devices) TurnRed(library, device);
  return 0;
} catch (const std::exception& error) {
  std::cerr << "host: " << error.what() << "\n";
  return 1;
}
