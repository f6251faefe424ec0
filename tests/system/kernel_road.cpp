/// The cases over this computer's kernel: keyboards through uhid, the SMBIOS table from the firmware.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "platform/linux/linux_machine.h"
#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "platform/standin/text.h"
#include "tests/cases/road.h"
#include "tests/support/temporary_folder.h"
#include "tests/system/uhid_keyboards.h"

namespace test {
namespace {

class KernelRoad final : public Road {
 public:
  std::string Name() const override { return "kernel"; }
  std::string WhyNot(Need need) const override {
    return need == Need::Firmware
               ? "a kernel offers no firmware methods"
               : "a request without an answer takes five seconds, and the device is spared for sixty";
  }

  void Place(const std::shared_ptr<simulator::Notebook>& notebook) override {
    const simulator::Profile& profile = notebook->profile();
    platform::LinuxPlaces places;
    places.settings = {WriteSettings(profile)};
    if (!profile.firmware_record) places.smbios = folder_.path() / "none";
    for (const auto& [name, value] : profile.environment) {
      setenv(platform::ReadableUtf8(name).c_str(), platform::ReadableUtf8(value).c_str(), 1);
    }
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::LinuxMachine>(places)));
    keyboards_ = std::make_unique<UhidKeyboards>(notebook);
  }
  void Settle() override { keyboards_->Settle(); }
  void TakeAway() override {
    EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
    EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::Machine>()));
    keyboards_.reset();
  }

 private:
  std::filesystem::path WriteSettings(const simulator::Profile& profile) const {
    std::filesystem::path file = folder_.path() / "settings.toml";
    std::ofstream stream(file);
    for (const auto& [key, values] : profile.registry) {
      stream << "[registry.'" << platform::ReadableUtf8(key) << "']\n";
      for (const auto& [name, bytes] : values)
        stream << platform::ReadableUtf8(name) << " = " << int{bytes.front()} << "\n";
    }
    return file;
  }

  const TemporaryFolder folder_;
  std::unique_ptr<UhidKeyboards> keyboards_;
};

}  // namespace

Road& TheRoad() {
  static KernelRoad road;
  return road;
}

}  // namespace test
