#include <cstring>
#include <limits>
#include <new>

#include "platform/standin/live_counters.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

// A block is the length in bytes, the characters, and a terminator; the BSTR points at the characters.
using LengthPrefix = std::uint32_t;

constexpr Call<BSTR> kSysAllocString = ZeroCall<BSTR>("SysAllocString");
constexpr Call<Nothing> kSysFreeString = SureCall("SysFreeString");
constexpr Call<UINT> kSysStringLen = SureCall<UINT>("SysStringLen");

}  // namespace

BSTR AllocateText(std::wstring_view text) {
  if (text.size() >= std::numeric_limits<LengthPrefix>::max() / sizeof(OLECHAR)) throw std::bad_alloc();
  const std::size_t bytes = text.size() * sizeof(OLECHAR);
  auto* const block = static_cast<char*>(::operator new(sizeof(LengthPrefix) + bytes + sizeof(OLECHAR)));
  const auto prefix = static_cast<LengthPrefix>(bytes);
  constexpr OLECHAR kTerminator = 0;
  std::memcpy(block, &prefix, sizeof(prefix));
  if (bytes != 0) std::memcpy(block + sizeof(prefix), text.data(), bytes);
  std::memcpy(block + sizeof(prefix) + bytes, &kTerminator, sizeof(kTerminator));
  ++g_live.texts;
  return reinterpret_cast<BSTR>(block + sizeof(prefix));
}

void FreeText(BSTR text) noexcept {
  if (text == nullptr) return;
  --g_live.texts;
  ::operator delete(reinterpret_cast<char*>(text) - sizeof(LengthPrefix));
}

UINT TextLength(BSTR text) noexcept {
  if (text == nullptr) return 0;
  LengthPrefix bytes = 0;
  std::memcpy(&bytes, reinterpret_cast<const char*>(text) - sizeof(bytes), sizeof(bytes));
  return bytes / static_cast<UINT>(sizeof(OLECHAR));
}

extern "C" {

BSTR SysAllocString(const OLECHAR* text) {
  return Pass(kSysAllocString, Asked(text), [&] { return text != nullptr ? AllocateText(text) : nullptr; });
}

void SysFreeString(BSTR text) {
  Pass(kSysFreeString, Asked(text), [&] { FreeText(text); });
}

UINT SysStringLen(BSTR text) {
  return Pass(kSysStringLen, Asked(text), [&] { return TextLength(text); });
}

}  // extern "C"

}  // namespace platform
