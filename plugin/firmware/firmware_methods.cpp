#include "firmware/firmware_methods.h"

#include <algorithm>
#include <initializer_list>
#include <span>

#include "firmware/com_resources.h"
#include "firmware/wmi_connection.h"
#include "platform/system.h"

namespace {

constexpr DWORD kPauseMilliseconds = 30;
constexpr std::size_t kBacklightPacketSize = 16;
constexpr ULONG kLedQuery = 16;

/// The frame of every call. `call` prepares its input, runs the method and copies the results out. The connection is
/// closed after the values of `call` and before the pause.
template <typename Call>
std::int32_t FirmwareCall(Call call) {
  {
    WmiConnection connection;
    if (!call(connection)) return 0;
  }
  Sleep(kPauseMilliseconds);
  return 1;
}

/// Opens the connection and runs `method` on the firmware's instance.
bool Run(WmiConnection& connection, const wchar_t* method, Variant& input, std::initializer_list<NamedVariant> out) {
  const NamedVariant in[] = {{L"gmInput", input}};
  return OpenWmiConnection(connection) != 0 &&
         ExecFirmwareMethod(connection, kFirmwareClass, method, kFirmwareInstances, in, out) != 0;
}

/// A call that sends bytes and takes the firmware's 32-bit answer.
std::int32_t SendBytes(const wchar_t* method, std::span<const std::uint8_t> input, std::uint32_t& answer) {
  return FirmwareCall([&](WmiConnection& connection) {
    Variant gm_input;
    Variant gm_output;
    if (!gm_input.SetBytes(input)) return false;
    if (!Run(connection, method, gm_input, {{L"gmOutput", gm_output}})) return false;
    if (!gm_output.ChangeTo(VT_UI4)) return false;
    answer = V_UI4(gm_output.Get());
    return true;
  });
}

}  // namespace

std::int32_t SetGamingLED(const std::uint8_t* input, std::uint32_t* output, std::int32_t length) {
  return length < 0 ? 0 : SendBytes(L"SetGamingLED", {input, static_cast<std::size_t>(length)}, *output);
}

std::int32_t SetGamingKBBacklight(const std::uint8_t* input, std::uint64_t* output) {
  std::uint32_t answer = 0;
  if (SendBytes(L"SetGamingKBBacklight", {input, kBacklightPacketSize}, answer) == 0) return 0;
  *output = static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(answer)});
  return 1;
}

std::int32_t SetGamingRgbKb(std::uint64_t value) {
  return FirmwareCall([&](WmiConnection& connection) {
    Variant gm_input;
    Variant gm_output;
    V_VT(gm_input.Get()) = VT_UI8;
    V_UI8(gm_input.Get()) = value;
    return gm_input.ChangeTo(VT_BSTR) && Run(connection, L"SetGamingRgbKb", gm_input, {{L"gmOutput", gm_output}}) &&
           gm_output.ChangeTo(VT_UI4);
  });
}

std::int32_t GetGamingLED(std::uint8_t* buffer, std::int32_t length) {
  return FirmwareCall([&](WmiConnection& connection) {
    Variant gm_input;
    Variant gm_return;
    Variant gm_output;
    V_VT(gm_input.Get()) = VT_UI4;
    V_UI4(gm_input.Get()) = kLedQuery;
    if (length < 1 || !gm_input.ChangeTo(VT_BSTR)) return false;
    if (!Run(connection, L"GetGamingLED", gm_input, {{L"gmReturn", gm_return}, {L"gmOutput", gm_output}})) return false;
    if (!gm_return.ChangeTo(VT_UI8)) return false;
    const ArrayBytes answer(*gm_output.Get());  // not converted: the platform would turn a text into its raw bytes
    if (!answer) return false;
    buffer[0] = static_cast<std::uint8_t>(V_UI8(gm_return.Get()));
    const std::size_t count = std::min(answer.Get().size(), static_cast<std::size_t>(length - 1));
    std::copy_n(answer.Get().begin(), count, buffer + 1);
    return true;
  });
}
