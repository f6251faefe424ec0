/// What only the platform itself shows: apartments, how calls through a proxy authenticate, handles.

#include "platform/standin/instruments.h"
#include "platform/wmi.h"
#include "tests/cases/case.h"
#include "tests/windows/management_service.h"

namespace test {
namespace {

class ServiceCase : public Case {
 protected:
  void SetUp() override {
    platform::SetJournal([this](const platform::JournalEntry& entry) {
      if (entry.call == "CoSetProxyBlanket") blankets.push_back(entry.arguments);
    });
  }
  void TearDown() override { platform::SetJournal({}); }

  /// The arguments of each CoSetProxyBlanket.
  Lines blankets;
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
