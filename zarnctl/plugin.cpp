#include "zarnctl/plugin.h"

#include <sstream>

#include "discovery/lighting_plugin.h"
#include "platform/portable/text.h"
#include "zarnctl/complaint.h"

namespace zarnctl {
namespace {

std::vector<std::string> Listed(const std::string& names) {
  std::vector<std::string> list;
  std::istringstream text(names);
  for (std::string name; std::getline(text, name, ',');) list.push_back(name);
  return list;
}

}  // namespace

Plugin::Plugin(const std::filesystem::path& file)
    // Without a path the loader searches for the name, beside this program first.
    : library_(file.empty() ? ZARN_LIGHTING_NAME : std::filesystem::absolute(file)) {
  if (!library_) {
    throw Complaint(ExitCode::Failed, "the plug-in cannot be loaded (use --plugin FILE): " +
                                          platform::Library::Error(file.empty() ? ZARN_LIGHTING_NAME : file));
  }
  library_.Keep();
}

void* Plugin::Find(const std::string& name) const {
  void* const address = library_.Find(name);
  if (address == nullptr) throw Complaint(ExitCode::Failed, "the plug-in has no export " + name);
  return address;
}

Discovery Plugin::Discover() const {
  const auto check = reinterpret_cast<decltype(&CheckDeviceStatus)>(Find("CheckDeviceStatus"));
  std::wstring names;
  std::wstring hardware_id;
  std::wstring usage_page;
  Discovery discovery;
  const std::int32_t count = check(names, discovery.interface_type, hardware_id, usage_page);
  // Without devices the list may still hold a name.
  if (count != 0) discovery.names = Listed(platform::ReadableUtf8(names));
  if (count < 0 || discovery.names.size() != static_cast<std::size_t>(count)) {
    throw Complaint(ExitCode::Failed, "the plug-in's discovery counts " + std::to_string(count) + " and names \"" +
                                          platform::ReadableUtf8(names) + "\"");
  }
  discovery.hardware_id = platform::ReadableUtf8(hardware_id);
  discovery.usage_page = platform::ReadableUtf8(usage_page);
  return discovery;
}

std::unique_ptr<RGBControllerInterface> Plugin::CreateDevice(const std::string& name) const {
  if (name == "ZarnECGlobal") return Create<ZarnECGlobalController>(name);
  if (name == "ZarnECKeyboard") return Create<ZarnECKeyboardController>(name);
  if (name == "ZarnHIDKeyboard") return Create<ZarnHIDKeyboardController>(name);
  throw Complaint(ExitCode::Failed, "the plug-in reports a device of an unknown kind: " + name);
}

template <typename Controller>
std::unique_ptr<RGBControllerInterface> Plugin::Create(const std::string& name) const {
  const std::string device_factory = "CreateRGBController_" + name + "ClassInstance";
  const auto make_controller = reinterpret_cast<Controller* (*)()>(Find("Create" + name + "ControllerClassInstance"));
  const auto make_device = reinterpret_cast<RGBControllerInterface* (*)(Controller*)>(Find(device_factory));
  std::unique_ptr<RGBControllerInterface> device(make_device(make_controller()));
  if (device == nullptr) throw Complaint(ExitCode::Failed, device_factory + " created nothing");
  return device;
}

}  // namespace zarnctl
