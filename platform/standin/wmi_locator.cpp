#include "platform/standin/wmi_locator.h"

#include "platform/standin/text.h"
#include "platform/standin/wmi_services.h"

namespace platform {
namespace {

constexpr Call<HRESULT> kConnectServer =
    ObjectCall("IWbemLocator::ConnectServer", Status(WBEM_E_ACCESS_DENIED), Status(WBEM_E_OUT_OF_MEMORY));

}  // namespace

HRESULT WmiLocator::ConnectServer(BSTR network_resource, BSTR user, BSTR /*password*/, BSTR /*locale*/,
                                  LONG security_flags, BSTR /*authority*/, IWbemContext* /*context*/,
                                  IWbemServices** services) {
  Empty(services);
  return Pass(kConnectServer, Asked(network_resource, user, security_flags), [&]() -> HRESULT {
    if (network_resource == nullptr || services == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
    if (!EqualsWithoutCase(network_resource, L"ROOT\\WMI")) return Status(WBEM_E_INVALID_NAMESPACE);
    *services = new WmiServices;
    return Status(WBEM_S_NO_ERROR);
  });
}

}  // namespace platform
