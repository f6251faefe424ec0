#include "simulator/notebook.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/portable/wmi_api.h"
#include "simulator/notebook_machine.h"

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

Profile ThreeZonesAndLightBar() {
  Profile profile;
  profile.ec = {3, true, {2, 91}};
  profile.firmware_instance = L"ACPI\\PNP0C14\\ZARN_0";
  profile.user_name = L"player";
  profile.registry[L"SOFTWARE\\OEM\\Service\\Log"][L"Switch"] = {1, 0, 0, 0};
  profile.environment[L"PROGRAMDATA"] = L"/data";
  return profile;
}

TEST(NotebookTest, SmbiosTableHoldsTheRecordBehindAStructureWithStrings) {
  Profile profile = ThreeZonesAndLightBar();
  const Bytes strings{1,   8,   0,   0,   1,   2,   0,   0,   'Z', 'a', 'r', 'n', 0,   'S', 'i', 'm', 'u',
                      'l', 'a', 't', 'e', 'd', ' ', 'N', 'o', 't', 'e', 'b', 'o', 'o', 'k', 0,   0};
  const auto behind_strings = [&strings](const Bytes& table) {
    EXPECT_TRUE(std::equal(strings.begin(), strings.end(), table.begin()));
    return Bytes(table.begin() + static_cast<std::ptrdiff_t>(strings.size()), table.end());
  };
  EXPECT_EQ(behind_strings(Notebook(profile).SmbiosTable()),
            (Bytes{172, 15, 1, 0, 2, 91, 8, 3, 0, 10, 2, 0, 23, 1, 0, 0, 0, 127, 4, 2, 0, 0, 0}));
  profile.rgb_keyboard = false;
  profile.ec = {0, false, {1, 7}};
  EXPECT_EQ(behind_strings(Notebook(profile).SmbiosTable()),
            (Bytes{172, 15, 1, 0, 1, 7, 8, 0, 0, 10, 1, 0, 23, 2, 0, 0, 0, 127, 4, 2, 0, 0, 0}));
  profile.firmware_record = false;
  EXPECT_EQ(Notebook(profile).SmbiosTable(), Bytes{});
}

TEST(NotebookTest, WireKeepsEveryCallOnceWithItsAnswer) {
  Notebook notebook(ThreeZonesAndLightBar());
  notebook.CallFirmware("SetGamingRgbKb", L"65284");
  notebook.CallFirmware("SetGamingLED", Bytes{1});
  const std::vector<WireRecord> wire = notebook.TakeWire();
  ASSERT_EQ(wire.size(), 2U);
  EXPECT_EQ(wire[0].method, "SetGamingRgbKb");
  EXPECT_EQ(wire[0].input, EcFirmware::Input(L"65284"));
  EXPECT_EQ(wire[0].answer.refusal, "");
  EXPECT_EQ(wire[1].answer.refusal, "the packet has 1 bytes, must have 16");
  EXPECT_TRUE(notebook.TakeWire().empty());
  EXPECT_EQ(notebook.Lights().zones[2].color, (Color{0xFF, 0, 0}));
}

class NotebookMachineTest : public ::testing::Test {
 protected:
  platform::FirmwareAnswer Call(const std::wstring& method, const platform::NamedValues& in) {
    return machine_->CallFirmware(L"ACPI\\PNP0C14\\ZARN_0", method, in);
  }

  const std::shared_ptr<Notebook> notebook_ = std::make_shared<Notebook>(ThreeZonesAndLightBar());
  const std::shared_ptr<platform::Machine> machine_ = MakeMachine(notebook_);
};

TEST_F(NotebookMachineTest, FirmwareAnswersUnderTheParameterNames) {
  const platform::FirmwareClass firmware = machine_->FindFirmwareClass().value();
  EXPECT_EQ(firmware.instance_names, std::vector<platform::Value>{L"ACPI\\PNP0C14\\ZARN_0"});
  std::vector<std::wstring> names;
  for (const auto& method : firmware.methods) names.push_back(method.name);
  EXPECT_EQ(names,
            (std::vector<std::wstring>{L"SetGamingLED", L"GetGamingLED", L"SetGamingKBBacklight", L"SetGamingRgbKb"}));

  EXPECT_EQ(Call(L"SetGamingRgbKb", {{L"gmInput", L"65281"}}).out,
            (platform::NamedValues{{L"gmOutput", std::uint32_t{0}}}));
  EXPECT_EQ(notebook_->Lights().zones[0].color, (Color{0xFF, 0, 0}));
  EXPECT_EQ(Call(L"GetGamingLED", {{L"gmInput", L"16"}}).out,
            (platform::NamedValues{{L"gmOutput", Bytes{0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}},
                                   {L"gmReturn", std::uint64_t{0}}}));
}

TEST_F(NotebookMachineTest, RefusedOrUnusableInputIsAnInvalidParameter) {
  for (const platform::NamedValues& in :
       {platform::NamedValues{}, {{L"gmInput", std::uint32_t{16}}}, {{L"gmInput", L"17"}}, {{L"gmInput", Bytes{16}}}}) {
    const platform::FirmwareAnswer answer = Call(L"GetGamingLED", in);
    EXPECT_EQ(answer.status, WBEM_E_INVALID_PARAMETER);
    EXPECT_TRUE(answer.out.empty());
  }
  EXPECT_EQ(notebook_->TakeWire().size(), 2U);
  EXPECT_EQ(machine_->CallFirmware(L"Other", L"GetGamingLED", {{L"gmInput", L"16"}}).status, WBEM_E_NOT_FOUND);
  EXPECT_TRUE(notebook_->TakeWire().empty());
}

TEST_F(NotebookMachineTest, RegistryComparesWithoutCaseAndHasTheKeysAbove) {
  EXPECT_TRUE(machine_->HasRegistryKey(L"software\\oem"));
  EXPECT_TRUE(machine_->HasRegistryKey(L"SOFTWARE\\OEM\\Service\\LOG"));
  EXPECT_FALSE(machine_->HasRegistryKey(L"SOFTWARE\\OE"));
  EXPECT_FALSE(machine_->HasRegistryKey(L"SOFTWARE\\OEM\\Service\\Log\\More"));
  EXPECT_EQ(machine_->RegistryValue(L"SOFTWARE\\OEM\\service\\Log", L"SWITCH"), (Bytes{1, 0, 0, 0}));
  EXPECT_EQ(machine_->RegistryValue(L"SOFTWARE\\OEM\\Service", L"Switch"), std::nullopt);
  EXPECT_EQ(machine_->RegistryValue(L"SOFTWARE\\OEM\\Service\\Log", L"Other"), std::nullopt);
}

TEST_F(NotebookMachineTest, ProfileStandsBeforeTheComputersOwnEnvironment) {
  ::setenv("PROGRAMDATA", "/own", 1);
  ::setenv("ZARN_TEST_VARIABLE", "caf\xC3\xA9", 1);
  EXPECT_EQ(machine_->EnvironmentVariable(L"ProgramData"), L"/data");
  EXPECT_EQ(machine_->EnvironmentVariable(L"ZARN_TEST_VARIABLE"), L"caf\u00E9");
  EXPECT_EQ(machine_->EnvironmentVariable(L"ZARN_TEST_MISSING"), std::nullopt);
  EXPECT_EQ(machine_->UserName(), L"player");
}

TEST(EmptyNotebookTest, MachineHasNeitherTableNorFirmwareNorUser) {
  Profile profile;
  profile.firmware_record = false;
  const auto machine = MakeMachine(std::make_shared<Notebook>(profile));
  EXPECT_FALSE(machine->ReadSmbiosTable().has_value());
  EXPECT_FALSE(machine->FindFirmwareClass().has_value());
  EXPECT_EQ(machine->UserName(), std::nullopt);
  EXPECT_FALSE(machine->HasRegistryKey(L"SOFTWARE"));
}

}  // namespace
}  // namespace simulator
