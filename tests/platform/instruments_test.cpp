#include <atomic>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "platform/registry.h"
#include "platform/system.h"
#include "tests/platform/management_session.h"
#include "tests/support/machine_fixture.h"

namespace {

using platform::FaultPlan;
using test::OwnedVariant;
using test::Session;
using InstrumentsTest = test::MachineTest;

/// Runs `call` with its own fault.
template <typename Call>
auto Failing(Call call, FaultPlan::Kind kind = FaultPlan::Kind::Failure) {
  platform::ArmFaults({.kind = kind});
  const auto answer = call();
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  return answer;
}

TEST_F(InstrumentsTest, CallsFailInTheirOwnWay) {
  const Session session;
  const auto text = test::MakeText(L"ZarnGamingFunction");
  OwnedVariant value;
  test::PutBytes(value, "a");
  void* place = nullptr;
  wchar_t wide[8] = L"";
  char narrow[8] = "";
  DWORD size = 8;
  HKEY key = nullptr;
  SAFEARRAYBOUND bound = {1, 0};
  IWbemClassObject* object = nullptr;
  IWbemServices& services = *session.services;
  const auto in = session.InParameters(L"SetGamingLED");

  EXPECT_EQ(Failing([&] { return CoCreateInstance(CLSID_WbemLocator, nullptr, 1, IID_IWbemLocator, &place); }),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(Failing([&] { return CoSetProxyBlanket(&services, 10, 0, nullptr, 3, 3, nullptr, 0); }), E_NOINTERFACE);
  EXPECT_EQ(Failing([&] { return services.GetObject(text.get(), 0, nullptr, &object, nullptr); }), WBEM_E_FAILED);
  EXPECT_EQ(Failing([&] { return services.ExecMethod(text.get(), text.get(), 0, nullptr, nullptr, &object, nullptr); }),
            WBEM_E_FAILED);
  EXPECT_EQ(Failing([&] { return in->Put(L"gmInput", 0, &value, 0); }), WBEM_E_FAILED);
  EXPECT_EQ(Failing([&] { return in->Get(L"gmInput", 0, &value, nullptr, nullptr); }), WBEM_E_NOT_FOUND);
  EXPECT_EQ(Failing([] { return SysAllocString(L""); }), nullptr);
  EXPECT_EQ(Failing([&] { return SafeArrayCreate(VT_UI1, 1, &bound); }), nullptr);
  EXPECT_EQ(Failing([&] { return SafeArrayAccessData(V_ARRAY(&value), &place); }), E_FAIL);
  EXPECT_EQ(Failing([&] { return VariantChangeType(&value, &value, 0, VT_ARRAY | VT_UI1); }), E_OUTOFMEMORY);
  EXPECT_EQ(Failing([&] { return RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"A", 0, KEY_READ, &key); }), 2);
  EXPECT_EQ(Failing([&] { return RegQueryValueExW(key, L"A", nullptr, nullptr, nullptr, &size); }), 2);
  EXPECT_EQ(Failing([&] { return GetEnvironmentVariableW(L"A", wide, 8); }), 0U);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
  EXPECT_EQ(Failing([&] { return GetUserNameW(wide, &size); }), FALSE);
  EXPECT_EQ(Failing([&] { return WideCharToMultiByte(CP_ACP, 0, L"a", -1, narrow, 8, nullptr, nullptr); }), 0);
  const std::string folder = testing::TempDir() + "never_made/";
  EXPECT_EQ(Failing([&] { return MakeSureDirectoryPathExists(folder.c_str()); }), FALSE);
  EXPECT_FALSE(std::filesystem::exists(folder));
  std::wofstream stream;
  EXPECT_TRUE(Failing([&] { return platform::OpenStream(stream, L"/dev/null", std::ios_base::out), stream.fail(); }));
}

TEST_F(InstrumentsTest, EmptySuccessHandsNothingBack) {
  const Session session;
  const auto text = test::MakeText(L"ZarnGamingFunction");
  auto* object = reinterpret_cast<IWbemClassObject*>(this);
  platform::ArmFaults({.first = 2, .reach = FaultPlan::Reach::FromThere, .kind = FaultPlan::Kind::EmptySuccess});
  OwnedVariant not_counted;
  test::PutText(not_counted, L"");
  EXPECT_NE(session.Query(L"SELECT * FROM ZarnGamingFunction"), nullptr);
  EXPECT_EQ(session.Query(L"SELECT * FROM ZarnGamingFunction"), nullptr);
  EXPECT_EQ(session.status, S_OK);
  EXPECT_EQ(session.services->GetObject(text.get(), 0, nullptr, &object, nullptr), S_OK);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(platform::DisarmFaults(), 2U);
}

TEST_F(InstrumentsTest, FaultsAreCountedOverAllThreads) {
  for (const auto& [reach, failures] : {std::pair(FaultPlan::Reach::Once, 1U), {FaultPlan::Reach::FromThere, 91U}}) {
    platform::ArmFaults({.first = 10, .reach = reach});
    std::atomic<unsigned> failed = 0;
    std::vector<std::thread> callers;
    callers.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
      callers.emplace_back([&] {
        for (int i = 0; i < 25; ++i) {
          if (test::MakeText(L"x") == nullptr) ++failed;
        }
      });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(failed, failures);
    EXPECT_EQ(platform::DisarmFaults(), failures);
  }
}

TEST_F(InstrumentsTest, ThrowingMachineFailsTheCall) {
  machine->answer = [](const test::FirmwareCall&) -> platform::FirmwareAnswer { throw std::runtime_error("gone"); };
  const Session session;
  const wchar_t path[] = L"ZarnGamingFunction.InstanceName=\"ACPI\\\\ZARN\\\\0_0\"";
  EXPECT_EQ(session.Run(path, L"SetGamingLED"), nullptr);
  EXPECT_EQ(session.status, WBEM_E_FAILED);
  machine->answer = [](const test::FirmwareCall&) -> platform::FirmwareAnswer { throw std::bad_alloc(); };
  EXPECT_EQ(session.Run(path, L"SetGamingLED"), nullptr);
  EXPECT_EQ(session.status, WBEM_E_OUT_OF_MEMORY);
}

TEST_F(InstrumentsTest, ThrowingJournalDoesNotReachTheCaller) {
  platform::SetJournal([](const platform::JournalEntry&) { throw std::runtime_error("full"); });
  EXPECT_NE(test::MakeText(L"x"), nullptr);
  platform::SetJournal({});
}

TEST_F(InstrumentsTest, MachineStaysWhileAnythingOfItIsAlive) {
  const auto other = std::make_shared<platform::EmptyMachine>();
  EXPECT_FALSE(platform::UseMachine(nullptr));
  {
    const auto text = test::MakeText(L"x");
    EXPECT_FALSE(platform::UseMachine(other));
  }
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  EXPECT_FALSE(platform::UseMachine(other));
  EXPECT_EQ(platform::CurrentMachine(), machine);
  CoUninitialize();
  EXPECT_TRUE(platform::UseMachine(other));
  EXPECT_EQ(platform::CurrentMachine(), other);
}

}  // namespace
