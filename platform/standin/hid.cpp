#include <algorithm>
#include <cstddef>
#include <optional>

#include "platform/standin/hid_interfaces.h"
#include "platform/standin/open_things.h"
#include "platform/standin/platform_call.h"

namespace platform {
namespace {

using Interface = std::shared_ptr<const HidInterface>;

/// An interface's descriptor can outlive its handle.
OpenThings<Interface>& Preparsed() {
  static NoDestructor<OpenThings<Interface>> preparsed(g_live.preparsed_data);
  return *preparsed;
}

/// The interface behind `handle`, or null with a complaint.
Interface Require(const char* call, HANDLE handle) {
  Interface interface = InterfaceOf(handle);
  if (interface != nullptr) return interface;
  Complain(std::string(call) + " of a handle that is not open");
  SetThreadError(ERROR_INVALID_HANDLE);
  return nullptr;
}

BOOLEAN GetAttributes(HANDLE handle, PHIDD_ATTRIBUTES attributes) {
  const Interface interface = Require("HidD_GetAttributes", handle);
  if (interface == nullptr) return FALSE;
  if (attributes == nullptr || attributes->Size != sizeof(*attributes)) return FailWith(ERROR_INVALID_PARAMETER);
  *attributes = {sizeof(*attributes), interface->vendor, interface->product, interface->version};
  return TRUE;
}

BOOLEAN GetPreparsedData(HANDLE handle, PHIDP_PREPARSED_DATA* preparsed) {
  Interface interface = Require("HidD_GetPreparsedData", handle);
  if (interface == nullptr) return FALSE;
  if (preparsed == nullptr) return FailWith(ERROR_INVALID_PARAMETER);
  *preparsed = static_cast<PHIDP_PREPARSED_DATA>(Preparsed().Add(std::move(interface)));
  return TRUE;
}

/// The interface that `preparsed` describes, or nothing with a complaint.
std::optional<Interface> RequireData(const char* call, PHIDP_PREPARSED_DATA preparsed) {
  auto interface = Preparsed().Find(preparsed);
  if (!interface) Complain(std::string(call) + " of data that is not there");
  return interface;
}

NTSTATUS GetCaps(PHIDP_PREPARSED_DATA preparsed, PHIDP_CAPS caps) {
  const auto interface = RequireData("HidP_GetCaps", preparsed);
  if (!interface || caps == nullptr) return HIDP_STATUS_INVALID_PREPARSED_DATA;
  *caps = (*interface)->collection.caps;
  return HIDP_STATUS_SUCCESS;
}

NTSTATUS GetValueCaps(HIDP_REPORT_TYPE type, PHIDP_VALUE_CAPS caps, PUSHORT length, PHIDP_PREPARSED_DATA preparsed) {
  const auto interface = RequireData("HidP_GetValueCaps", preparsed);
  if (!interface || length == nullptr) return HIDP_STATUS_INVALID_PREPARSED_DATA;
  if (type != HidP_Feature) return HIDP_STATUS_INVALID_REPORT_TYPE;
  const std::vector<HIDP_VALUE_CAPS>& values = (*interface)->collection.values;
  if (values.empty()) return HIDP_STATUS_USAGE_NOT_FOUND;
  if (caps == nullptr) return HIDP_STATUS_INVALID_REPORT_LENGTH;
  const std::size_t count = std::min<std::size_t>(*length, values.size());
  std::copy_n(values.begin(), count, caps);
  *length = static_cast<USHORT>(count);
  return HIDP_STATUS_SUCCESS;
}

/// Runs `exchange(connection, report)` for a report of the right length.
template <typename Exchange>
BOOLEAN ExchangeFeature(const char* call, HANDLE handle, PVOID report, ULONG length, const Exchange& exchange) {
  const Interface interface = Require(call, handle);
  if (interface == nullptr) return FALSE;
  const ULONG expected = interface->collection.caps.FeatureReportByteLength;
  if (report == nullptr || expected == 0 || length != expected) return FailWith(ERROR_INVALID_PARAMETER);
  if (interface->connection == nullptr) return FailWith(ERROR_ACCESS_DENIED);
  const LONG error = exchange(*interface->connection, std::span(static_cast<std::uint8_t*>(report), length));
  return error == ERROR_SUCCESS ? BOOLEAN{TRUE} : FailWith(error);
}

std::span<const std::uint8_t> BytesOf(const void* report, ULONG length) {
  return {static_cast<const std::uint8_t*>(report), report != nullptr ? length : 0};
}

constexpr Call<NTSTATUS> StatusOf(const char* name) {
  return ComCall(name, HIDP_STATUS_INVALID_PREPARSED_DATA, HIDP_STATUS_INVALID_PREPARSED_DATA);
}

}  // namespace

extern "C" {

BOOLEAN HidD_GetAttributes(HANDLE handle, PHIDD_ATTRIBUTES attributes) {
  return Pass(ZeroCall<BOOLEAN>("HidD_GetAttributes", ERROR_GEN_FAILURE), Asked(Opened{handle}),
              [&] { return GetAttributes(handle, attributes); });
}

BOOLEAN HidD_GetPreparsedData(HANDLE handle, PHIDP_PREPARSED_DATA* preparsed) {
  return Pass(ZeroCall<BOOLEAN>("HidD_GetPreparsedData", ERROR_GEN_FAILURE), Asked(Opened{handle}),
              [&] { return GetPreparsedData(handle, preparsed); });
}

BOOLEAN HidD_FreePreparsedData(PHIDP_PREPARSED_DATA preparsed) {
  return Pass(Sure(ZeroCall<BOOLEAN>("HidD_FreePreparsedData", ERROR_INVALID_PARAMETER)), Asked(), [&] {
    const bool freed = Preparsed().Remove(preparsed);
    if (!freed) Complain("HidD_FreePreparsedData of data that is not there");
    return freed ? BOOLEAN{TRUE} : FailWith(ERROR_INVALID_PARAMETER);
  });
}

NTSTATUS HidP_GetCaps(PHIDP_PREPARSED_DATA preparsed, PHIDP_CAPS caps) {
  return Pass(StatusOf("HidP_GetCaps"), Asked(), [&] { return GetCaps(preparsed, caps); });
}

NTSTATUS HidP_GetValueCaps(HIDP_REPORT_TYPE type, PHIDP_VALUE_CAPS caps, PUSHORT length,
                           PHIDP_PREPARSED_DATA preparsed) {
  return Pass(StatusOf("HidP_GetValueCaps"), Asked(static_cast<int>(type)),
              [&] { return GetValueCaps(type, caps, length, preparsed); });
}

BOOLEAN HidD_SetFeature(HANDLE handle, PVOID report, ULONG length) {
  return Pass(ZeroCall<BOOLEAN>("HidD_SetFeature", ERROR_GEN_FAILURE), Asked(Opened{handle}, BytesOf(report, length)),
              [&] {
                return ExchangeFeature("HidD_SetFeature", handle, report, length,
                                       [](HidConnection& to, auto bytes) { return to.SetFeature(bytes); });
              });
}

BOOLEAN HidD_GetFeature(HANDLE handle, PVOID report, ULONG length) {
  return Pass(
      ZeroCall<BOOLEAN>("HidD_GetFeature", ERROR_GEN_FAILURE),
      Asked(Opened{handle}, BytesOf(report, length > 0 ? 1 : 0)),
      [&] {
        return ExchangeFeature("HidD_GetFeature", handle, report, length,
                               [](HidConnection& from, auto bytes) { return from.GetFeature(bytes); });
      },
      [&](BOOLEAN done) { return done != FALSE ? Described(BytesOf(report, length)) : std::string(); });
}

}  // extern "C"

}  // namespace platform
