
#include "platform/standin/variant_value.h"
#include "platform/wmi.h"
#include "tests/support/machine_fixture.h"

namespace {

using platform::Bytes;
using platform::Value;
using ValuesTest = test::MachineTest;

struct OwnedVariant : VARIANT {
  explicit OwnedVariant(const Value& value = {}) : VARIANT(platform::VariantOf(value)) {}
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { EXPECT_EQ(VariantClear(this), S_OK); }

  Value Read() const { return platform::ValueOf(*this).value(); }
};

constexpr VARTYPE kBytes = VT_ARRAY | VT_UI1;

const struct {
  VARTYPE type;
  HRESULT result;
  Value from;
  Value to;
} kConversions[] = {
    {VT_BSTR, S_OK, ~std::uint64_t{0}, L"18446744073709551615"},
    {VT_UI4, S_OK, std::int32_t{-1}, ~std::uint32_t{0}},
    {VT_UI8, S_OK, L"18446744073709551615", ~std::uint64_t{0}},
    {kBytes, S_OK, Bytes{1, 0, 255}, Bytes{1, 0, 255}},
    {VT_UI8, DISP_E_OVERFLOW, std::int32_t{-1}, {}},
    {VT_UI8, DISP_E_OVERFLOW, L"18446744073709551616", {}},
    {VT_UI4, DISP_E_OVERFLOW, ~std::uint64_t{0}, {}},
    {VT_UI4, DISP_E_OVERFLOW, L"-1", {}},
    {VT_BSTR, DISP_E_TYPEMISMATCH, platform::Null(), {}},
    {VT_UI4, DISP_E_TYPEMISMATCH, Bytes{1}, {}},
};

TEST_F(ValuesTest, ConversionsFollowThePlatformAndChangeNothingWhenTheyFail) {
  for (const auto& [type, result, from, to] : kConversions) {
    SCOPED_TRACE(testing::PrintToString(from) + " to " + std::to_string(type));
    OwnedVariant source(from);
    OwnedVariant destination(L"before");
    EXPECT_EQ(VariantChangeType(&destination, &source, 0, type), result);
    EXPECT_EQ(destination.Read(), result == S_OK ? to : Value(L"before"));
    EXPECT_EQ(source.Read(), from);
    EXPECT_EQ(VariantChangeType(&source, &source, 0, type), result);
    EXPECT_EQ(source.Read(), result == S_OK ? to : from);
  }
}

}  // namespace
