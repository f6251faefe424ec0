#include "zarnctl/this_system.h"

#include "log/service_switch.h"
#include "platform/standin/text.h"
#include "zarnctl/log_watch.h"

namespace zarnctl {
namespace {

std::string Example(const ServiceSwitch& service_switch) {
  return "  HKEY_LOCAL_MACHINE\\" + platform::ReadableUtf8(service_switch.key) + ", the DWORD " +
         platform::ReadableUtf8(service_switch.value) + " = 1\n";
}

/// Nothing outside the plug-in sees what it exchanges. Its log tells of failures, but not of all.
class ThisComputer final : public Hardware {
 public:
  std::string Name() const override { return "this computer"; }

  Exchanges TakeExchanges(const std::string& device) override {
    const std::vector<std::string> lines = log_.NewLines();
    log_ = {};
    Exchanges exchanges{.failures = FailuresIn(lines)};
    if (!IsOn(kLogSwitch)) {
      exchanges.doubt = "whose log would tell what came of it, but is off: see 'zarnctl config'";
    } else if (lines.empty()) {
      exchanges.doubt = "which logged nothing of it: see 'zarnctl doctor'";
    } else if (device != "ZarnHIDKeyboard" && exchanges.failures.empty()) {
      exchanges.doubt = "which does not tell whether the firmware took it";
    }
    return exchanges;
  }

  /// None: the log also calls it a failure when the notebook lacks a part.
  std::vector<std::string> TakeRefusals() override {
    log_ = {};
    return {};
  }

  SettingsPlaces Settings() const override {
    return {.text =
                "to turn logging on, set in the registry:\n" + Example(kLogSwitch) +
                "to have a HID keyboard reported beside the embedded controller's devices, and not without them:\n" +
                Example(kHybridSwitch)};
  }

  Remedies RemediesHere() const override {
    return {.nothing_discovered = "'zarnctl doctor' tells why",
            .switches = "'zarnctl config' shows where it is set",
            .no_hid_devices = "plug the keyboard in",
            .may_not_open = "run as administrator",
            .no_node = "plug it in again",
            .no_answer = "plug it in again",
            .no_table = "run as administrator",
            .no_record = "this is no notebook of the family; HID keyboards need none",
            .no_firmware_class = "the firmware publishes it on a notebook of the family, to administrators"};
  }

 private:
  LogWatch log_;
};

}  // namespace

SystemFeatures ThisSystem() {
  return {.note =
              "Here it drives this computer alone. zarnctl on Linux also simulates notebooks (--machine), traces\n"
              "exchanges (--trace), records machines (record) and draws lights (picture).\n"
              "What was refused shows in the plug-in's log alone, and not all of it does."};
}

std::unique_ptr<Hardware> OpenHardware(const TypedValues& /*typed*/) { return std::make_unique<ThisComputer>(); }

}  // namespace zarnctl
