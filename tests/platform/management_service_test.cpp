#include <latch>
#include <thread>

#include "tests/platform/management_session.h"
#include "tests/support/machine_fixture.h"

namespace {

using test::OwnedVariant;
using test::Session;
using ManagementServiceTest = test::MachineTest;

constexpr wchar_t kPath[] = L"ZarnGamingFunction.InstanceName=\"ACPI\\\\ZARN\\\\0_0\"";

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

TEST_F(ManagementServiceTest, NamesThatAreNotThereFindNothingAndOddQueriesAreRefused) {
  EXPECT_EQ(Session(L"ROOT\\CIMV2").status, WBEM_E_INVALID_NAMESPACE);
  machine->has_firmware = false;
  const Session session;
  void* object = nullptr;
  EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, 1, CLSID_WbemLocator, &object), E_NOINTERFACE);
  EXPECT_EQ(CoCreateInstance(IID_IWbemLocator, nullptr, 1, IID_IWbemLocator, &object), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(test::TakeNext(*session.Query(L"SELECT * FROM ZarnGamingFunction")), nullptr);
  EXPECT_EQ(session.InParameters(L"SetGamingLED"), nullptr);
  EXPECT_EQ(session.status, WBEM_E_NOT_FOUND);
  for (const wchar_t* query : {L"", L"SELECT * FROM", L"SELECT Name FROM A", L"SELECT * FROM A WHERE B = 1"}) {
    EXPECT_EQ(session.Query(query), nullptr);
    EXPECT_EQ(session.status, WBEM_E_INVALID_QUERY);
  }
}

TEST_F(ManagementServiceTest, FirmwareRunsOnlyForAnExactPathAndAKnownMethod) {
  machine->firmware.instance_names = {std::uint32_t{5}, L"A\\B"};
  machine->firmware.methods.push_back({L"NoInput", false});
  const struct {
    std::wstring path;
    HRESULT result;
    const wchar_t* method = L"NoInput";
  } cases[] = {
      {LR"(ZarnGamingFunction.InstanceName="A\\B")", S_OK},
      {LR"(ZarnGamingFunction.InstanceName="A\\B")", WBEM_E_INVALID_METHOD, L"Unknown"},
      {LR"(ZarnGamingFunction.InstanceName="5")", WBEM_E_NOT_FOUND},
      {LR"(ZarnGamingFunction.InstanceName="A\\b")", WBEM_E_NOT_FOUND},
      {L"", WBEM_E_INVALID_QUERY},
      {LR"(ZarnGamingFunction.InstanceName="A\B")", WBEM_E_INVALID_OBJECT_PATH},
      {LR"(ZarnGamingFunction.InstanceName="A"B")", WBEM_E_INVALID_OBJECT_PATH},
      {L"ZarnGamingFunction", WBEM_E_INVALID_OBJECT_PATH},
  };
  const Session session;
  for (const auto& [path, result, method] : cases) {
    EXPECT_EQ(session.Run(path, method) != nullptr, SUCCEEDED(result));
    EXPECT_EQ(session.status, result) << testing::PrintToString(path);
  }
  EXPECT_EQ(machine->TakeCalls().size(), 1U);
  EXPECT_EQ(session.InParameters(L"NoInput"), nullptr);
  EXPECT_EQ(session.status, S_OK);
}

TEST_F(ManagementServiceTest, BlockedFirmwareHoldsNobodyUp) {
  std::latch entered(3);
  std::latch open(1);
  machine->answer = [&](const test::FirmwareCall&) {
    entered.count_down();
    open.wait();
    return platform::FirmwareAnswer{S_OK, {}};
  };
  const Session session;
  const auto in = session.InParameters(L"SetGamingLED");
  std::thread callers[3];
  for (std::thread& caller : callers) {
    caller = std::thread([&] { EXPECT_NE(session.Run(kPath, L"SetGamingLED", in.get()), nullptr); });
  }
  entered.wait();
  OwnedVariant input(L"5");
  EXPECT_EQ(in->Put(L"gmInput", 0, &input, 0), S_OK);
  EXPECT_NE(test::TakeNext(*session.Query(L" select  * From zarngamingfunction ")), nullptr);
  open.count_down();
  for (std::thread& caller : callers) caller.join();
}

}  // namespace
