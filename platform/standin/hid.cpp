#include <algorithm>
#include <cstddef>
#include <optional>

#include "platform/standin/device_handles.h"
#include "platform/standin/live_counters.h"
#include "platform/standin/no_destructor.h"
#include "platform/standin/open_things.h"

namespace platform {
namespace {

constexpr Call<BOOLEAN> kGetAttributes = ZeroCall<BOOLEAN>("HidD_GetAttributes", ERROR_GEN_FAILURE);
constexpr Call<BOOLEAN> kGetPreparsedData = ZeroCall<BOOLEAN>("HidD_GetPreparsedData", ERROR_GEN_FAILURE);
constexpr Call<BOOLEAN> kFreePreparsedData = Sure(ZeroCall<BOOLEAN>("HidD_FreePreparsedData", ERROR_INVALID_PARAMETER));
constexpr Call<NTSTATUS> kGetCaps =
    ComCall("HidP_GetCaps", HIDP_STATUS_INVALID_PREPARSED_DATA, HIDP_STATUS_INVALID_PREPARSED_DATA);
constexpr Call<NTSTATUS> kGetValueCaps =
    ComCall("HidP_GetValueCaps", HIDP_STATUS_INVALID_PREPARSED_DATA, HIDP_STATUS_INVALID_PREPARSED_DATA);
constexpr Call<BOOLEAN> kSetFeature = ZeroCall<BOOLEAN>("HidD_SetFeature", ERROR_GEN_FAILURE);
constexpr Call<BOOLEAN> kGetFeature = ZeroCall<BOOLEAN>("HidD_GetFeature", ERROR_GEN_FAILURE);

using Interface = std::shared_ptr<const HidInterface>;

/// An interface's descriptor can outlive its handle.
OpenThings<Interface>& Preparsed() {
  static NoDestructor<OpenThings<Interface>> preparsed(g_live.preparsed_data);
  return *preparsed;
}

BOOLEAN Done(LONG error) {
  if (error == ERROR_SUCCESS) return TRUE;
  SetThreadError(error);
  return FALSE;
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
  if (attributes == nullptr || attributes->Size != sizeof(*attributes)) return Done(ERROR_INVALID_PARAMETER);
  *attributes = {sizeof(*attributes), interface->vendor, interface->product, interface->version};
  return TRUE;
}

BOOLEAN GetPreparsedData(HANDLE handle, PHIDP_PREPARSED_DATA* preparsed) {
  Interface interface = Require("HidD_GetPreparsedData", handle);
  if (interface == nullptr) return FALSE;
  if (preparsed == nullptr) return Done(ERROR_INVALID_PARAMETER);
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
  if (report == nullptr || expected == 0 || length != expected) return Done(ERROR_INVALID_PARAMETER);
  if (interface->connection == nullptr) return Done(ERROR_ACCESS_DENIED);
  return Done(exchange(*interface->connection, std::span(static_cast<std::uint8_t*>(report), length)));
}

std::string BytesOf(const void* report, ULONG length) {
  const auto* const bytes = static_cast<const std::uint8_t*>(report);
  return report != nullptr ? Described(Bytes(bytes, bytes + length)) : "null";
}

}  // namespace

extern "C" {

BOOLEAN HidD_GetAttributes(HANDLE handle, PHIDD_ATTRIBUTES attributes) {
  return Pass(kGetAttributes, AskedOf(handle), [&] { return GetAttributes(handle, attributes); });
}

BOOLEAN HidD_GetPreparsedData(HANDLE handle, PHIDP_PREPARSED_DATA* preparsed) {
  return Pass(kGetPreparsedData, AskedOf(handle), [&] { return GetPreparsedData(handle, preparsed); });
}

BOOLEAN HidD_FreePreparsedData(PHIDP_PREPARSED_DATA preparsed) {
  return Pass(kFreePreparsedData, Asked(), [&] {
    if (Preparsed().Remove(preparsed)) return BOOLEAN{TRUE};
    Complain("HidD_FreePreparsedData of data that is not there");
    return Done(ERROR_INVALID_PARAMETER);
  });
}

NTSTATUS HidP_GetCaps(PHIDP_PREPARSED_DATA preparsed, PHIDP_CAPS caps) {
  return Pass(kGetCaps, Asked(), [&] { return GetCaps(preparsed, caps); });
}

NTSTATUS HidP_GetValueCaps(HIDP_REPORT_TYPE type, PHIDP_VALUE_CAPS caps, PUSHORT length,
                           PHIDP_PREPARSED_DATA preparsed) {
  return Pass(kGetValueCaps, Asked(static_cast<int>(type)),
              [&] { return GetValueCaps(type, caps, length, preparsed); });
}

BOOLEAN HidD_SetFeature(HANDLE handle, PVOID report, ULONG length) {
  return Pass(
      kSetFeature,
      [&] {
        return std::vector{DescribedHandle(handle), BytesOf(report, length)};
      },
      [&] {
        return ExchangeFeature("HidD_SetFeature", handle, report, length,
                               [](HidConnection& connection, auto bytes) { return connection.SetFeature(bytes); });
      });
}

BOOLEAN HidD_GetFeature(HANDLE handle, PVOID report, ULONG length) {
  return Pass(
      kGetFeature,
      [&] {
        return std::vector{DescribedHandle(handle), BytesOf(report, report != nullptr && length > 0 ? 1 : 0)};
      },
      [&] {
        return ExchangeFeature("HidD_GetFeature", handle, report, length,
                               [](HidConnection& connection, auto bytes) { return connection.GetFeature(bytes); });
      },
      [&](BOOLEAN done) { return done != FALSE ? BytesOf(report, length) : std::string(); });
}

}  // extern "C"

}  // namespace platform
