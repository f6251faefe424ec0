#include "firmware/smbios.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/hex.h"
#include "tests/support/machine_fixture.h"

namespace test {
namespace {

/// The record in `table`. When there is none, the record that was passed in must have been cleared.
std::optional<stSMBiosType172> Find(const Bytes& table) {
  stSMBiosType172 record;
  record.itemIds.fill(1);
  if (FindSMBiosType172(ExactBlock(table).view(), record)) return record;
  EXPECT_EQ(record.type, 0);
  EXPECT_EQ(record.itemIds, stSMBiosType172().itemIds);
  return std::nullopt;
}

stSMBiosType172 Found(const std::string& table) { return Find(Hex(table)).value(); }

TEST(Smbios, StructureIsUnpacked) {
  const stSMBiosType172 record = Found("ac 0f 34 12 02 5b 08 04 00 0a 02 01 0a 01 00 00 00");
  EXPECT_TRUE(record.type == 172 && record.length == 15 && record.handle == 0x1234);
  EXPECT_TRUE(record.biosMajor == 2 && record.biosMinor == 91 && record.itemCount == 3);
  EXPECT_EQ(Bytes(record.itemIds.begin(), record.itemIds.begin() + 4), Hex("08 0a 0a 00"));
  EXPECT_EQ((std::vector(record.itemValues.begin(), record.itemValues.begin() + 4)),
            (std::vector<std::uint16_t>{4, 0x0102, 1, 0}));
  EXPECT_EQ(FirstItem(record, 10), 0x0102);
  EXPECT_EQ(FirstItem(record, 9), std::nullopt);
  EXPECT_EQ(FirstItem(record, 0), std::nullopt);  // not the zeros behind the items
}

TEST(Smbios, WalkFollowsLengthsAndStringSets) {
  const std::string oem = "ac 06 00 00 03 04 00 00";
  EXPECT_EQ(Found("0b 05 00 00 01 54 65 73 74 00 00 " + oem).biosMinor, 4);
  EXPECT_EQ(Found("01 04 00 00 00 00 " + oem).biosMinor, 4);                 // no strings
  EXPECT_EQ(Found("7f 04 00 00 00 00 " + oem).biosMinor, 4);                 // behind the end-of-table structure
  EXPECT_EQ(Found("01 06 00 00 ac ac 61 00 62 00 00 " + oem).biosMinor, 4);  // 172 inside another structure
}

TEST(Smbios, OnlyWholeItemsCount) {
  const std::pair<const char*, std::int32_t> counts[] = {{"ac 06 00 00 02 5b 00 00", 0},
                                                         {"ac 08 00 00 02 5b 08 04 00 00", 0},
                                                         {"ac 09 00 00 02 5b 08 04 00 00", 1},
                                                         {"ac 05 00 00 02 5b", 0},
                                                         {"ac 03 00 00 02 5b", -1},
                                                         {"ac 00 00 00 02 5b", -2}};
  for (const auto& [table, count] : counts) {
    const stSMBiosType172 record = Found(table);
    EXPECT_EQ(record.itemCount, count) << table;
    EXPECT_EQ(record.biosMinor, 91);  // where six bytes are there
    EXPECT_EQ(FirstItem(record, 8).has_value(), count > 0);
    EXPECT_EQ(FindAnnouncedLights(record).keyboard, count > 0);
  }
  EXPECT_EQ(Found("ac 04 00 00").biosMajor, 0);
}

TEST(Smbios, EveryTruncationIsReadInsideItsBounds) {
  const Bytes whole = Hex("0b 05 00 0b 01 54 65 73 74 00 00 ac 0f 00 ac 02 5b 08 04 00 0a 02 00 17 01 00");
  EXPECT_TRUE(Find(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(Find(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)))) << size;
  }
  EXPECT_FALSE(Find(Hex("01 04 00 00 61 62 63")));     // strings that run to the end
  EXPECT_FALSE(Find(Hex("01 ff 00 00 00 00 ac 06")));  // a formatted area longer than the table
  EXPECT_FALSE(Find(Bytes(1000, 0x00)));
}

class SmbiosReader : public MachineTest {};

TEST_F(SmbiosReader, BytesAreCopiedOtherTypesFailAndTheVersionIsTakenEitherWay) {
  for (const Value& data : {Value(Bytes{1, 2, 3}), Value(Bytes()), Value(), Value(platform::Null()),
                            Value(std::wstring(L"text")), Value(std::uint32_t{1})}) {
    machine->smbios = {data, std::uint8_t{3}, std::uint32_t{0x105}};
    RawSmbiosTable table;
    const Bytes* const bytes = std::get_if<Bytes>(&data);
    EXPECT_EQ(ReadRawSmbiosTable(table), bytes != nullptr ? 1 : 0);
    EXPECT_EQ(table.data != nullptr, bytes != nullptr);
    EXPECT_EQ(Bytes(table.data.get(), table.data.get() + table.length), bytes != nullptr ? *bytes : Bytes());
    EXPECT_EQ(table.smbiosMajor, 3);
    EXPECT_EQ(table.smbiosMinor, 5);
  }
  machine->smbios.reset();
  RawSmbiosTable table;
  EXPECT_EQ(ReadRawSmbiosTable(table), 0);
  EXPECT_EQ(table.smbiosMajor, 0);
}

}  // namespace
}  // namespace test
