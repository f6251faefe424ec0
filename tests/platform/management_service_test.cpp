#include <thread>

#include "platform/standin/management_class.h"
#include "platform/wmi.h"
#include "tests/support/machine_fixture.h"

namespace {

using ManagementServiceTest = test::MachineTest;

TEST_F(ManagementServiceTest, ApartmentsBelongToThreadsUntilTheirLastLeave) {
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
  EXPECT_EQ(platform::CountLive().com_initializations, 2);
  std::thread([] {
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, 1, IID_IWbemLocator, &object), CO_E_NOTINITIALIZED);
    EXPECT_EQ(object, nullptr);
    CoUninitialize();
    EXPECT_EQ(platform::TakeComplaints().size(), 1U);
  }).join();
  CoUninitialize();
  CoUninitialize();
  platform::ArmFaults({});
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), E_OUTOFMEMORY);
  platform::DisarmFaults();
  EXPECT_EQ(platform::CountLive().com_initializations, 1) << "a failed one is taken back too";
  CoUninitialize();
}

TEST_F(ManagementServiceTest, QueriesAndPathsOfOneFormAreUnderstood) {
  EXPECT_EQ(platform::ParseSelectAll(L" select  * From\tA "), L"A");
  for (const wchar_t* query : {L"", L"SELECT * FROM", L"SELECT Name FROM A", L"SELECT * FROM A WHERE B = 1"}) {
    EXPECT_EQ(platform::ParseSelectAll(query), std::nullopt);
  }
  const auto path = platform::ParseObjectPath(LR"(Class.instancename="A\\B")");
  EXPECT_TRUE(path && path->class_name == L"Class" && path->instance_name == LR"(A\B)");
  for (const wchar_t* odd : {L"", L"Class", LR"(.InstanceName="A")", LR"(Class.Name="A")",
                             LR"(Class.InstanceName="A\B")", LR"(Class.InstanceName="A"B")"}) {
    EXPECT_FALSE(platform::ParseObjectPath(odd)) << testing::PrintToString(odd);
  }
}

TEST_F(ManagementServiceTest, ClassesAndMethodsGoByNameWhateverTheCaseAndInstancesByTheirExactText) {
  machine->firmware.instance_names = {std::uint32_t{5}, L"A\\B"};
  const auto found = platform::FindManagementClass(L"zarngamingfunction");
  ASSERT_TRUE(found);
  EXPECT_FALSE(platform::FindManagementClass(L"ZarnGaming"));
  EXPECT_NE(platform::FindMethod(found->methods, L"setgamingled"), nullptr);
  EXPECT_EQ(platform::FindMethod(found->methods, L"SetGaming"), nullptr);
  EXPECT_NE(platform::FindInstance(*found, L"A\\B"), nullptr);
  for (const wchar_t* const other : {L"A\\b", L"5", L""}) EXPECT_EQ(platform::FindInstance(*found, other), nullptr);
}

}  // namespace
