/// The cases over this computer's kernel: keyboards through uhid, firmware methods through its WMI bus. The SMBIOS
/// table is the notebook's own, in a file.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <variant>

#include "base/little_endian.h"
#include "platform/linux/linux_machine.h"
#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "platform/standin/text.h"
#include "tests/cases/road.h"
#include "tests/support/temporary_folder.h"
#include "tests/system/emulated_firmware.h"
#include "tests/system/uhid_keyboards.h"

namespace test {
namespace {

class KernelRoad final : public Road {
 public:
  std::string Name() const override { return "kernel"; }
  std::string WhyNot(Need need) const override {
    return need == Need::OddSettings
               ? "settings files hold numbers of four bytes alone"
               : "a request without an answer takes five seconds, and the device is spared for sixty";
  }

  void Place(const std::shared_ptr<simulator::Notebook>& notebook) override {
    const simulator::Profile& profile = notebook->profile();
    platform::LinuxPlaces places;
    places.settings = {WriteSettings(profile)};
    places.smbios = WriteSmbiosTable(*notebook);
    if (profile.firmware_instance.empty()) places.wmi_devices = folder_.path() / "none";
    for (const auto& [name, value] : profile.environment) {
      setenv(platform::ReadableUtf8(name).c_str(), platform::ReadableUtf8(value).c_str(), 1);
    }
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::LinuxMachine>(places)));
    keyboards_ = std::make_unique<UhidKeyboards>(notebook);
    notebook_ = notebook;
    firmware_.emplace();
    EmulatedFirmware::AnswerLights(LightsOf(profile));
    CallModule("\\_SB.WZRN.TRES 0");  // what a test before may have set
  }
  void Settle() override { keyboards_->Settle(); }
  void CatchUp() override {
    for (const EmulatedFirmware::Call& call : firmware_->Take()) {
      const auto* const known = std::ranges::find(kMethods, call.method, &Method::id);
      ASSERT_NE(known, std::end(kMethods)) << "method " << call.method;
      simulator::EcFirmware::Input input = call.input;
      if (known->takes_number) input = std::to_wstring(FromLittleEndian(call.input));
      notebook_->CallFirmware(known->name, input);
    }
  }
  void TakeAway() override {
    EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
    EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::Machine>()));
    keyboards_.reset();
    notebook_.reset();
  }

 private:
  struct Method {
    int id;
    const char* name;
    bool takes_number;  // which travels as bytes; the notebook's own firmware wants decimal text
  };
  static constexpr Method kMethods[] = {{2, "SetGamingLED", false},
                                        {4, "GetGamingLED", true},
                                        {6, "SetGamingRgbKb", true},
                                        {20, "SetGamingKBBacklight", false}};

  /// What the notebook's own firmware would answer: gmReturn and gmOutput.
  static std::vector<std::uint8_t> LightsOf(const simulator::Profile& profile) {
    const simulator::EcFirmware::Answer answer = simulator::EcFirmware(profile.ec).Call("GetGamingLED", L"16");
    auto bytes = std::get<std::vector<std::uint8_t>>(answer.output);
    bytes.insert(bytes.begin(), static_cast<std::uint8_t>(answer.gm_return.value_or(0)));
    return bytes;
  }

  /// The folder in which the table stands as the kernel shows it. Without a table there is none.
  std::filesystem::path WriteSmbiosTable(const simulator::Notebook& notebook) const {
    std::filesystem::path folder = folder_.path() / "smbios";
    std::filesystem::remove_all(folder);
    const std::vector<std::uint8_t> table = notebook.SmbiosTable();
    if (table.empty()) return folder;
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "DMI", std::ios::binary)
        .write(reinterpret_cast<const char*>(table.data()), static_cast<std::streamsize>(table.size()));
    return folder;
  }

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
  std::shared_ptr<simulator::Notebook> notebook_;
  std::optional<EmulatedFirmware> firmware_;
  std::unique_ptr<UhidKeyboards> keyboards_;
};

}  // namespace

Road& TheRoad() {
  static KernelRoad road;
  return road;
}

}  // namespace test
