#include "log/service_switch.h"
#include "platform/standin/text.h"
#include "zarnctl/config.h"

namespace zarnctl {
namespace {

std::string Example(const ServiceSwitch& service_switch) {
  return "  HKEY_LOCAL_MACHINE\\" + platform::ReadableUtf8(service_switch.key) + ", the DWORD " +
         platform::ReadableUtf8(service_switch.value) + " = 1\n";
}

}  // namespace

std::string SettingsPlaces() {
  return "to turn logging on, set in the registry:\n" + Example(kLogSwitch) +
         "to have a HID keyboard reported beside the embedded controller's devices, and not without them:\n" +
         Example(kHybridSwitch);
}

std::vector<std::string> ComplaintsAboutSettings() { return {}; }

}  // namespace zarnctl
