/// What shows on the platform itself alone: apartments, how calls through a proxy authenticate, handles.

#include "platform/standin/instruments.h"
#include "platform/wmi.h"
#include "tests/cases/case.h"
#include "tests/windows/management_service.h"

namespace test {
namespace {

class ServiceCase : public Case {
 public:
  ServiceCase(const ServiceCase&) = delete;
  ServiceCase& operator=(const ServiceCase&) = delete;

 protected:
  /// What the service's proxies were told, a line for each time.
  Lines blankets;

  ServiceCase() {
    platform::SetJournal([this](const platform::JournalEntry& entry) {
      if (entry.call == "CoSetProxyBlanket") blankets.push_back(entry.arguments);
    });
  }
  ~ServiceCase() override { platform::SetJournal({}); }
};

TEST_F(ServiceCase, CallsAuthenticateAsTheCallerAtCallLevel) {
  Start("four-zone");
  EXPECT_EQ(Discover().count, 1);
  EXPECT_EQ(blankets, (Lines{"10, 0, null, 3, 3, null, 0"}));
  const Device device = Create("ZarnECKeyboard");
  blankets.clear();
  device->ChooseMode(1);
  Await([&] { return notebook->Lights().effect.has_value() || notebook->Lights().brightness != 0; });
  EXPECT_NE(blankets, Lines{});
  for (const std::string& blanket : blankets) EXPECT_EQ(blanket, "10, 0, null, 3, 3, null, 0");
}

TEST_F(ServiceCase, AHostsThreadMayLiveInASingleThreadedApartment) {
  Start("light-bar");
  std::thread([this] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    platform::ReplaceManagementService();
    EXPECT_EQ(Discover().count, 2);
    Choose(Create("ZarnECGlobal"), "WAVE");
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE) << "it left the apartment";
    CoUninitialize();
  }).join();
  EXPECT_EQ(notebook->Lights().effect->code, 3);
}

TEST_F(ServiceCase, UseLeavesNoHandleOfThePlatformOpen) {
  Start("hybrid");
  const auto use = [this] {
    EXPECT_EQ(Discover().count, 3);
    for (const std::string name : {"ZarnECGlobal", "ZarnECKeyboard", "ZarnHIDKeyboard"}) {
      const Device device = Create(name);
      device->ChooseMode(1);
      device->WriteColorsToDevice();
    }
    DWORD handles = 0;
    EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &handles));
    return handles;
  };
  use();  // what the platform keeps for itself is there from here on
  const DWORD before = use();
  for (int i = 0; i < 10; ++i) use();
  EXPECT_EQ(use(), before);
}

}  // namespace
}  // namespace test
