#include <memory>
#include <thread>

#include "platform/wmi.h"
#include "tests/support/machine_fixture.h"

namespace {

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
  void operator()(OLECHAR* text) const { SysFreeString(text); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, Releaser>;

Owned<OLECHAR> Text(const std::wstring& text) { return Owned<OLECHAR>(SysAllocString(text.c_str())); }

class ManagementServiceTest : public test::MachineTest {
 protected:
  ManagementServiceTest() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
  ~ManagementServiceTest() override {
    services.reset();
    CoUninitialize();
  }

  HRESULT Connect(const wchar_t* space = L"ROOT\\WMI") {
    void* place = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &place), S_OK);
    const Owned<IWbemLocator> locator(static_cast<IWbemLocator*>(place));
    IWbemServices* found = nullptr;
    const HRESULT status =
        locator->ConnectServer(Text(space).get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &found);
    services.reset(found);
    return status;
  }
  /// The status of a query, and how many instances it found.
  std::pair<HRESULT, ULONG> Query(const std::wstring& query) const {
    IEnumWbemClassObject* found = nullptr;
    const HRESULT status = services->ExecQuery(Text(L"WQL").get(), Text(query).get(), 48, nullptr, &found);
    const Owned<IEnumWbemClassObject> enumerator(found);
    EXPECT_EQ(enumerator != nullptr, SUCCEEDED(status));
    IWbemClassObject* objects[4] = {};
    ULONG returned = 0;
    if (found != nullptr) {
      EXPECT_EQ(found->Next(WBEM_INFINITE, 4, objects, &returned), WBEM_S_FALSE);
    }
    for (ULONG i = 0; i < returned; ++i) objects[i]->Release();
    return {status, returned};
  }
  HRESULT Run(const std::wstring& path, const wchar_t* method) const {
    IWbemClassObject* out = nullptr;
    const HRESULT status =
        services->ExecMethod(Text(path).get(), Text(method).get(), 0, nullptr, nullptr, &out, nullptr);
    const Owned<IWbemClassObject> owned(out);
    EXPECT_EQ(owned != nullptr, SUCCEEDED(status));
    return status;
  }

  Owned<IWbemServices> services;
};

TEST_F(ManagementServiceTest, ApartmentsBelongToThreadsUntilTheirLastLeave) {
  CoUninitialize();
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
}

TEST_F(ManagementServiceTest, QueriesFindInstancesWhateverTheCaseAndOddOnesAreRefused) {
  EXPECT_EQ(Connect(L"ROOT\\CIMV2"), WBEM_E_INVALID_NAMESPACE);
  ASSERT_EQ(Connect(), S_OK);
  using Found = std::pair<HRESULT, ULONG>;
  EXPECT_EQ(Query(L" select  * From zarngamingfunction "), Found(S_OK, 1));
  EXPECT_EQ(Query(L"SELECT * FROM Unknown"), Found(S_OK, 0));
  for (const wchar_t* query : {L"", L"SELECT * FROM", L"SELECT Name FROM A", L"SELECT * FROM A WHERE B = 1"}) {
    EXPECT_EQ(Query(query), Found(WBEM_E_INVALID_QUERY, 0));
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
  ASSERT_EQ(Connect(), S_OK);
  for (const auto& [path, result, method] : cases) EXPECT_EQ(Run(path, method), result) << testing::PrintToString(path);
  EXPECT_EQ(machine->TakeCalls().size(), 1U);
}

}  // namespace
