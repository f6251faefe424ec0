#include <condition_variable>
#include <thread>

#include "tests/platform/management_session.h"
#include "tests/support/machine_fixture.h"

namespace {

using platform::JournalEntry;
using platform::Null;
using test::Owned;
using test::OwnedVariant;
using test::Session;
using ManagementServiceTest = test::MachineTest;

constexpr wchar_t kPath[] = L"ZarnGamingFunction.InstanceName=\"ACPI\\\\ZARN\\\\0_0\"";

TEST_F(ManagementServiceTest, ApartmentsBelongToThreads) {
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
  EXPECT_EQ(platform::CountLive().com_initializations, 2);
  std::thread([] {
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object),
              CO_E_NOTINITIALIZED);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    CoUninitialize();
    EXPECT_EQ(platform::TakeComplaints().size(), 0U);
    CoUninitialize();
    EXPECT_EQ(platform::TakeComplaints().size(), 1U);
  }).join();
  CoUninitialize();
  CoUninitialize();
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK) << "the apartment was left with the last of them";
  CoUninitialize();
}

TEST_F(ManagementServiceTest, FailedInitializationIsTakenBackToo) {
  platform::ArmFaults({});
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), E_OUTOFMEMORY);
  platform::DisarmFaults();
  EXPECT_EQ(platform::CountLive().com_initializations, 1);
  CoUninitialize();
  EXPECT_EQ(platform::TakeComplaints().size(), 0U);
}

TEST_F(ManagementServiceTest, OnlyTheLocatorAndItsNamespaceExist) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  void* object = nullptr;
  EXPECT_EQ(CoCreateInstance(IID_IWbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object),
            REGDB_E_CLASSNOTREG);
  ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object), S_OK);
  const Owned<IWbemLocator> locator(static_cast<IWbemLocator*>(object));
  IWbemServices* services = nullptr;
  EXPECT_EQ(locator->ConnectServer(test::MakeText(L"ROOT\\CIMV2").get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                   &services),
            WBEM_E_INVALID_NAMESPACE);
  EXPECT_EQ(locator->QueryInterface(CLSID_WbemLocator, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(locator->QueryInterface(IID_IWbemLocator, &object), S_OK);
  EXPECT_EQ(locator->Release(), 1U);
  CoUninitialize();
}

TEST_F(ManagementServiceTest, InstancesComeInOrderAndThenNoMore) {
  machine->firmware.instance_names = {Null(), L"B"};
  const Session session;
  const auto found = session.Query(L" select  * From zarngamingfunction ");
  ASSERT_NE(found, nullptr);
  for (const VARTYPE type : {VT_NULL, VT_BSTR}) {
    OwnedVariant name;
    CIMTYPE cim_type = 0;
    EXPECT_EQ(test::TakeNext(*found)->Get(L"InstanceName", 0, &name, &cim_type, nullptr), S_OK);
    EXPECT_EQ(V_VT(&name), type);
    EXPECT_EQ(cim_type, type);
  }
  auto* untouched = reinterpret_cast<IWbemClassObject*>(this);
  ULONG returned = 7;
  EXPECT_EQ(found->Next(WBEM_INFINITE, 1, &untouched, &returned), WBEM_S_FALSE);
  EXPECT_EQ(returned, 0U);
  EXPECT_EQ(untouched, reinterpret_cast<IWbemClassObject*>(this));
}

TEST_F(ManagementServiceTest, UnknownClassHasNoInstancesAndOddQueriesAreRefused) {
  machine->has_firmware = false;
  const Session session;
  EXPECT_EQ(test::TakeNext(*session.Query(L"SELECT * FROM ZarnGamingFunction")), nullptr);
  EXPECT_EQ(session.InParameters(L"SetGamingLED"), nullptr);
  EXPECT_EQ(session.status, WBEM_E_NOT_FOUND);
  for (const wchar_t* query : {L"", L"SELECT * FROM", L"SELECT Name FROM A", L"SELECT * FROM A WHERE B = 1"}) {
    EXPECT_EQ(session.Query(query), nullptr);
    EXPECT_EQ(session.status, WBEM_E_INVALID_QUERY);
  }
}

TEST_F(ManagementServiceTest, SmbiosTableIsAnInstanceWhereThereIsOne) {
  const Session session;
  const test::Text class_name = test::MakeText(L"MSSMBios_RawSMBiosTables");
  IEnumWbemClassObject* tables = nullptr;
  ASSERT_EQ(session.services->CreateInstanceEnum(class_name.get(), 0, nullptr, &tables), S_OK);
  EXPECT_EQ(test::TakeNext(*Owned<IEnumWbemClassObject>(tables)), nullptr);

  machine->SetSmbios({0xAC, 0x06});
  ASSERT_EQ(session.services->CreateInstanceEnum(class_name.get(), 0, nullptr, &tables), S_OK);
  const auto table = test::TakeNext(*Owned<IEnumWbemClassObject>(tables));
  ASSERT_NE(table, nullptr);
  OwnedVariant data;
  OwnedVariant major;
  OwnedVariant missing;
  EXPECT_EQ(table->Get(L"SMBiosData", 0, &data, nullptr, nullptr), S_OK);
  ASSERT_EQ(V_VT(&data), VT_ARRAY | VT_UI1);
  EXPECT_EQ(V_ARRAY(&data)->rgsabound[0].cElements, 2U);
  EXPECT_EQ(table->Get(L"SmbiosMajorVersion", 0, &major, nullptr, nullptr), S_OK);
  EXPECT_EQ(V_UI1(&major), 3);
  EXPECT_EQ(table->Get(L"InstanceName", 0, &missing, nullptr, nullptr), WBEM_E_NOT_FOUND);
}

TEST_F(ManagementServiceTest, FirmwareCallIsJournaledInFull) {
  machine->answer = [](const test::FirmwareCall&) {
    return platform::FirmwareAnswer{S_OK,
                                    {{L"gmOutput", platform::Bytes{0x0A, 0xFF}}, {L"gmReturn", std::uint64_t{16}}}};
  };
  const Session session;
  const auto in = session.InParameters(L"SetGamingLED");
  ASSERT_NE(in, nullptr);
  OwnedVariant input;
  test::PutBytes(input, {"\x01\x07\x1e", 3});
  EXPECT_EQ(in->Put(L"gmInput", 0, &input, 0), S_OK);
  std::vector<JournalEntry> journal;
  platform::SetJournal([&](const JournalEntry& entry) {
    if (entry.call == "IWbemServices::ExecMethod") journal.push_back(entry);
  });
  EXPECT_NE(session.Run(kPath, L"setgamingled", in.get()), nullptr);
  platform::ArmFaults({});  // the first counted call is the text's
  EXPECT_EQ(session.Run(L"", L"x"), nullptr);
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  platform::SetJournal({});
  session.Run(kPath, L"SetGamingLED", in.get());

  ASSERT_EQ(journal.size(), 2U);
  EXPECT_EQ(journal[0].arguments,
            R"(ZarnGamingFunction.InstanceName="ACPI\\ZARN\\0_0", setgamingled, gmInput=01 07 1e)");
  EXPECT_EQ(journal[0].result, "0x00000000, gmOutput=0a ff, gmReturn=16");
  EXPECT_EQ(journal[1].result, "0x80041017");
  const std::vector<test::FirmwareCall> calls = machine->TakeCalls();
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0], (test::FirmwareCall{L"ACPI\\ZARN\\0_0", L"SetGamingLED", platform::Bytes{1, 7, 0x1E}}));
}

TEST_F(ManagementServiceTest, FirmwareRunsOnlyForAnExactPathAndAKnownMethod) {
  machine->firmware.instance_names = {std::uint32_t{5}, L"A\\B"};
  machine->firmware.methods.push_back({L"NoInput", false});
  const struct {
    const wchar_t* path;
    const wchar_t* method;
    HRESULT result;
  } cases[] = {
      {L"ZarnGamingFunction.InstanceName=\"A\\\\B\"", L"NoInput", S_OK},
      {L"ZarnGamingFunction.InstanceName=\"A\\\\B\"", L"Unknown", WBEM_E_INVALID_METHOD},
      {L"ZarnGamingFunction.InstanceName=\"5\"", L"NoInput", WBEM_E_NOT_FOUND},
      {L"ZarnGamingFunction.InstanceName=\"A\\\\b\"", L"NoInput", WBEM_E_NOT_FOUND},
      {L"Unknown.InstanceName=\"A\\\\B\"", L"NoInput", WBEM_E_NOT_FOUND},
      {L"", L"NoInput", WBEM_E_INVALID_QUERY},
      {L"ZarnGamingFunction.InstanceName=\"A\\B\"", L"NoInput", WBEM_E_INVALID_OBJECT_PATH},
      {L"ZarnGamingFunction.InstanceName=\"A\\\"", L"NoInput", WBEM_E_INVALID_OBJECT_PATH},
      {L"ZarnGamingFunction.InstanceName=\"A\"B\"", L"NoInput", WBEM_E_INVALID_OBJECT_PATH},
      {L"ZarnGamingFunction.InstanceName=\"", L"NoInput", WBEM_E_INVALID_OBJECT_PATH},
      {L"ZarnGamingFunction.Name=\"A\\\\B\"", L"NoInput", WBEM_E_INVALID_OBJECT_PATH},
      {L"ZarnGamingFunction", L"NoInput", WBEM_E_INVALID_OBJECT_PATH},
  };
  const Session session;
  for (const auto& run : cases) {
    EXPECT_EQ(session.Run(run.path, run.method) != nullptr, SUCCEEDED(run.result));
    EXPECT_EQ(session.status, run.result) << testing::PrintToString(std::wstring(run.path));
  }
  EXPECT_EQ(machine->TakeCalls().size(), 1U);
  EXPECT_EQ(session.InParameters(L"NoInput"), nullptr);
  EXPECT_EQ(session.status, S_OK);
  EXPECT_EQ(session.InParameters(L"Unknown"), nullptr);
  EXPECT_EQ(session.status, WBEM_E_NOT_FOUND);
}

TEST_F(ManagementServiceTest, BlockedFirmwareHoldsNobodyUp) {
  std::mutex lock;
  std::condition_variable changed;
  int inside = 0;
  bool open = false;
  machine->answer = [&](const test::FirmwareCall&) {
    std::unique_lock held(lock);
    ++inside;
    changed.notify_all();
    changed.wait(held, [&] { return open; });
    return platform::FirmwareAnswer{S_OK, {}};
  };
  const Session session;
  const auto in = session.InParameters(L"SetGamingLED");
  std::vector<std::thread> callers;
  callers.reserve(3);
  for (int i = 0; i < 3; ++i) {
    callers.emplace_back([&] { EXPECT_NE(session.Run(kPath, L"SetGamingLED", in.get()), nullptr); });
  }
  {
    std::unique_lock held(lock);
    changed.wait(held, [&] { return inside == 3; });
  }
  OwnedVariant input;
  test::PutText(input, L"5");
  EXPECT_EQ(in->Put(L"gmInput", 0, &input, 0), S_OK);
  EXPECT_NE(test::TakeNext(*session.Query(L"SELECT * FROM ZarnGamingFunction")), nullptr);
  {
    const std::lock_guard held(lock);
    open = true;
  }
  changed.notify_all();
  for (std::thread& caller : callers) caller.join();
}

}  // namespace
