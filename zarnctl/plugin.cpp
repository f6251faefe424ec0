#include "zarnctl/plugin.h"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "discovery/lighting_plugin.h"
#include "zarnctl/complaint.h"

namespace zarnctl {
namespace {

constexpr const char* kPluginName = "libzarn_lighting.so";

template <typename Controller>
std::unique_ptr<RGBControllerInterface> Create(const Plugin& plugin, const char* controller_factory,
                                               const char* device_factory) {
  const auto make_controller = reinterpret_cast<Controller* (*)()>(plugin.Find(controller_factory));
  const auto make_device = reinterpret_cast<RGBControllerInterface* (*)(Controller*)>(plugin.Find(device_factory));
  std::unique_ptr<RGBControllerInterface> device(make_device(make_controller()));
  if (device == nullptr) throw Complaint(ExitCode::Failed, std::string(device_factory) + " created nothing");
  return device;
}

std::unique_ptr<RGBControllerInterface> CreateEcKeyboard(const Plugin& plugin) {
  return Create<ZarnECKeyboardController>(plugin, "CreateZarnECKeyboardControllerClassInstance",
                                          "CreateRGBController_ZarnECKeyboardClassInstance");
}

struct DeviceType {
  std::string_view name;
  std::unique_ptr<RGBControllerInterface> (*create)(const Plugin&);
};
constexpr std::array kDeviceTypes{DeviceType{"ZarnECKeyboard", CreateEcKeyboard}};

}  // namespace

Plugin::Plugin(const std::filesystem::path& file)
    // Without a path the loader searches for the name, beside this program first.
    : library_(dlopen(file.empty() ? kPluginName : std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) {
    throw Complaint(ExitCode::Failed, std::string("the plug-in cannot be loaded (use --plugin FILE): ") + dlerror());
  }
}

void* Plugin::Find(const char* name) const {
  void* const address = dlsym(library_, name);
  if (address == nullptr) throw Complaint(ExitCode::Failed, std::string("the plug-in has no export ") + name);
  return address;
}

std::unique_ptr<RGBControllerInterface> Plugin::CreateDevice(const std::string& name) const {
  const auto* const type = std::ranges::find(kDeviceTypes, name, &DeviceType::name);
  if (type == kDeviceTypes.end()) throw Complaint(ExitCode::Failed, "the device " + name + " is not known to zarnctl");
  return type->create(*this);
}

std::vector<std::string> DeviceNames(const simulator::Notebook& notebook) {
  const simulator::Profile& profile = notebook.profile();
  if (profile.ec.keyboard_zones > 0 && profile.rgb_keyboard) return {"ZarnECKeyboard"};
  return {};
}

}  // namespace zarnctl
