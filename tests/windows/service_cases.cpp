/// What shows on the platform's own COM alone: apartments, and how calls through a proxy authenticate.

#include "platform/portable/instruments.h"
#include "platform/windows/management_service.h"
#include "platform/wmi.h"
#include "tests/cases/case.h"

namespace test {
namespace {

class ServiceCase : public Case {
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

}  // namespace
}  // namespace test
