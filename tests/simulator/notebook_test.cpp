#include "simulator/notebook.h"

#include <gtest/gtest.h>

#include "platform/standin/wmi_api.h"
#include "simulator/road/notebook_machine.h"

namespace simulator {
namespace {

TEST(NotebookMachineTest, RefusedInputIsOnTheWireAndUnusableInputIsNot) {
  Profile profile;
  profile.ec = {3, true, {2, 91}};
  profile.firmware_instance = L"ACPI\\PNP0C14\\ZARN_0";
  const auto notebook = std::make_shared<Notebook>(profile);
  const auto machine = MakeMachine(notebook);
  for (const platform::NamedValues& in :
       {platform::NamedValues{}, {{L"gmInput", std::uint32_t{16}}}, {{L"gmInput", L"17"}}}) {
    EXPECT_EQ(machine->CallFirmware(profile.firmware_instance, L"GetGamingLED", in).status, WBEM_E_INVALID_PARAMETER);
  }
  EXPECT_EQ(machine->CallFirmware(L"Other", L"GetGamingLED", {{L"gmInput", L"16"}}).status, WBEM_E_NOT_FOUND);
  const std::vector<WireRecord> wire = notebook->TakeWire();
  ASSERT_EQ(wire.size(), 1U);
  EXPECT_EQ(wire[0].refusal, "the input is 17, must be 16");
}

}  // namespace
}  // namespace simulator
