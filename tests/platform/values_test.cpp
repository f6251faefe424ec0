#include <cstring>

#include "platform/portable/variant_value.h"
#include "tests/platform/management_session.h"
#include "tests/support/machine_fixture.h"

namespace {

using platform::Null;
using platform::Value;
using test::OwnedVariant;
using test::PutBytes;
using test::PutText;
using ValuesTest = test::MachineTest;

Value Read(const VARIANT& variant) { return platform::ValueOf(variant).value(); }

struct Conversion {
  Value from;
  VARTYPE type;
  HRESULT result;
  Value to;
};

constexpr VARTYPE kBytes = VT_ARRAY | VT_UI1;
constexpr auto kAllOnes = ~std::uint64_t{0};

const Conversion kConversions[] = {
    {std::uint32_t{16}, VT_BSTR, S_OK, L"16"},
    {std::uint64_t{0xFFFFFF08}, VT_BSTR, S_OK, L"4294967048"},
    {kAllOnes, VT_BSTR, S_OK, L"18446744073709551615"},
    {std::int32_t{-2147483647 - 1}, VT_BSTR, S_OK, L"-2147483648"},
    {std::uint8_t{7}, VT_UI4, S_OK, std::uint32_t{7}},
    {~std::uint32_t{0}, VT_UI4, S_OK, ~std::uint32_t{0}},
    {~std::uint32_t{0}, VT_UI8, S_OK, std::uint64_t{0xFFFFFFFF}},
    {std::uint32_t{256}, VT_UI1, DISP_E_OVERFLOW, {}},
    {std::uint32_t{0x80000000}, VT_I4, DISP_E_OVERFLOW, {}},
    {std::int32_t{-1}, VT_UI4, S_OK, ~std::uint32_t{0}},
    {std::int32_t{-1}, VT_UI8, DISP_E_OVERFLOW, {}},
    {std::int32_t{-1}, VT_UI1, DISP_E_OVERFLOW, {}},
    {std::uint64_t{0x100000000}, VT_UI4, DISP_E_OVERFLOW, {}},
    {L"4294967295", VT_UI4, S_OK, ~std::uint32_t{0}},
    {L"4294967295", VT_UI8, S_OK, std::uint64_t{0xFFFFFFFF}},
    {L"18446744073709551615", VT_UI8, S_OK, kAllOnes},
    {L"18446744073709551616", VT_UI8, DISP_E_OVERFLOW, {}},
    {L"18446744073709551615", VT_UI4, DISP_E_OVERFLOW, {}},
    {L"-1", VT_UI4, DISP_E_OVERFLOW, {}},
    {L"-2147483648", VT_I4, S_OK, std::int32_t{-2147483647 - 1}},
    {L"-2147483649", VT_I4, DISP_E_OVERFLOW, {}},
    {L"", VT_UI4, DISP_E_TYPEMISMATCH, {}},
    {L"-", VT_UI4, DISP_E_TYPEMISMATCH, {}},
    {L"12x", VT_UI4, DISP_E_TYPEMISMATCH, {}},
    {L"text", VT_BSTR, S_OK, L"text"},
    {L"text", kBytes, DISP_E_TYPEMISMATCH, {}},
    {Value(), VT_UI4, S_OK, std::uint32_t{0}},
    {Value(), VT_UI8, S_OK, std::uint64_t{0}},
    {Value(), VT_BSTR, S_OK, L""},
    {Value(), kBytes, DISP_E_TYPEMISMATCH, {}},
    {Null(), VT_UI4, DISP_E_TYPEMISMATCH, {}},
    {Null(), VT_BSTR, DISP_E_TYPEMISMATCH, {}},
    {Null(), kBytes, DISP_E_TYPEMISMATCH, {}},
    {platform::Bytes{1, 0, 255}, kBytes, S_OK, platform::Bytes{1, 0, 255}},
    {platform::Bytes{1}, VT_UI4, DISP_E_TYPEMISMATCH, {}},
    {platform::Bytes{1}, VT_BSTR, DISP_E_TYPEMISMATCH, {}},
};

TEST_F(ValuesTest, ConversionsFollowThePlatform) {
  for (const Conversion& conversion : kConversions) {
    SCOPED_TRACE(::testing::Message() << "row " << &conversion - kConversions);
    const bool good = SUCCEEDED(conversion.result);
    OwnedVariant source;
    OwnedVariant destination;
    static_cast<VARIANT&>(source) = platform::VariantOf(conversion.from);
    PutText(destination, L"before");
    EXPECT_EQ(VariantChangeType(&destination, &source, 0, conversion.type), conversion.result);
    EXPECT_EQ(Read(destination), good ? conversion.to : Value(L"before"));
    EXPECT_EQ(Read(source), conversion.from);

    EXPECT_EQ(VariantChangeType(&source, &source, 0, conversion.type), conversion.result);
    EXPECT_EQ(Read(source), good ? conversion.to : conversion.from) << "in place";
  }
}

TEST_F(ValuesTest, TextHasItsLengthInBytesInFront) {
  const test::Text text = test::MakeText(L"ab");
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(text.get()) - 4,
                        "\x08\0\0\0"
                        "a\0\0\0b\0\0\0\0\0\0\0",
                        16),
            0);
  EXPECT_EQ(SysStringLen(text.get()), 2U);
  EXPECT_EQ(SysStringLen(nullptr), 0U);
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
}

TEST_F(ValuesTest, LockedArrayIsNotReleased) {
  OwnedVariant variant;
  PutBytes(variant, "abc");
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(V_ARRAY(&variant), &data), S_OK);
  EXPECT_EQ(VariantClear(&variant), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(SafeArrayDestroy(V_ARRAY(&variant)), DISP_E_ARRAYISLOCKED);
  OwnedVariant copy;
  EXPECT_EQ(VariantCopy(&variant, &copy), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(VariantCopy(&copy, &variant), S_OK);
  EXPECT_EQ(Read(variant), Value(platform::Bytes{'a', 'b', 'c'}));
  EXPECT_EQ(SafeArrayUnaccessData(V_ARRAY(&variant)), S_OK);
  EXPECT_EQ(SafeArrayUnaccessData(V_ARRAY(&variant)), E_FAIL);
  EXPECT_EQ(platform::TakeComplaints().size(), 1U);
  EXPECT_EQ(VariantClear(&variant), S_OK);
  EXPECT_EQ(Read(copy), Value(platform::Bytes{'a', 'b', 'c'})) << "a copy has an array, and locks, of its own";
}

TEST_F(ValuesTest, CopyReplacesWhatWasThere) {
  OwnedVariant source;
  OwnedVariant destination;
  PutText(source, L"new");
  PutBytes(destination, "old");
  EXPECT_EQ(VariantCopy(&source, &source), S_OK);
  EXPECT_EQ(VariantCopy(&destination, &source), S_OK);
  EXPECT_NE(V_BSTR(&destination), V_BSTR(&source));
  EXPECT_EQ(Read(destination), Value(L"new"));

  platform::ArmFaults({});
  EXPECT_EQ(VariantCopy(&destination, &source), E_OUTOFMEMORY);
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  EXPECT_EQ(Read(destination), Value());
}

TEST_F(ValuesTest, OnlyByteArraysOfOneDimensionExist) {
  SAFEARRAYBOUND bounds[] = {{0, 0}, {3, 1}};
  EXPECT_EQ(SafeArrayCreate(VT_UI4, 1, bounds), nullptr);
  EXPECT_EQ(SafeArrayCreate(VT_UI1, 2, bounds), nullptr);
  EXPECT_EQ(SafeArrayCreate(VT_UI1, 1, &bounds[1]), nullptr);
  SAFEARRAY* empty = SafeArrayCreate(VT_UI1, 1, bounds);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(platform::CountLive().arrays, 1);
  EXPECT_EQ(SafeArrayDestroy(empty), S_OK);
}

}  // namespace
