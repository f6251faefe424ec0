#include "tests/windows/management_service.h"

#include <stdexcept>

#include "platform/standin/management_service.h"

namespace platform {
namespace {

/// Lives as long as the process, so it counts no references.
class LocatorFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IClassFactory);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* /*outer*/, REFIID iid, void** object) override {
    IUnknown* const locator = NewLocator();
    const HRESULT result = locator->QueryInterface(iid, object);
    locator->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }
};

}  // namespace

void ReplaceManagementService() {
  static LocatorFactory factory;
  DWORD registration = 0;
  if (FAILED(CoRegisterClassObject(CLSID_WbemLocator, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                   &registration))) {
    throw std::runtime_error("the management service cannot be replaced");
  }
}

}  // namespace platform
