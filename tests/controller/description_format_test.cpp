#include "controller/description_format.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/controller/format_fixture.h"
#include "tests/support/allocation_faults.h"
#include "tests/support/hex.h"

namespace test {
namespace {

/// The example's bytes, with the maker's name and the brightness fields where a version has them.
Bytes ExampleBytes(const std::string& size, bool maker, bool brightness) {
  const std::string low_high = brightness ? "00 00 00 00 64 00 00 00 " : "";
  return Hex(size + " 00 00 00 05 00 00 00 03 00 41 42 00 " + (maker ? "02 00 5a 00 " : "") +
             "03 00 41 42 00 01 00 00 01 00 00 01 00 00 01 00 00 00 00 00 "
             "02 00 4d 00 ff 00 00 00 30 00 00 00 00 00 00 00 00 00 00 00 " +
             low_high + "00 00 00 00 00 00 00 00 00 00 00 00 " + (brightness ? "32 00 00 00 " : "") +
             "00 00 00 00 01 00 00 00 00 00 "
             "01 00 02 00 4b 00 01 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 00 00 "
             "01 00 02 00 4c 00 07 00 00 00 01 00 ff 00 00 00");
}

Bytes Packed(const ControllerRecords& records, std::uint32_t version) {
  return Copy(PackDescription(records, version));
}

/// The bytes with their size in the first field, if there is room for it.
Bytes Sized(Bytes bytes) {
  const std::size_t size = bytes.size();
  for (std::size_t i = 0; i < 4 && size >= 4; ++i) bytes[i] = static_cast<std::uint8_t>(size >> (8 * i));
  return bytes;
}

/// A description with no texts, modes or LEDs but these zones, LED and colour sections.
Bytes Description(const std::string& zones_and_rest) {
  return Sized(Hex("00 00 00 00 05 00 00 00 01 00 00 01 00 00 01 00 00 01 00 00 01 00 00 01 00 00 00 00 00 00 00 00 " +
                   zones_and_rest));
}

TEST(DescriptionFormat, ExampleHasItsBytesAtEveryVersionAndReadsBackToThem) {
  const std::pair<std::uint32_t, Bytes> versions[] = {{0, ExampleBytes("73", false, false)},
                                                      {1, ExampleBytes("77", true, false)},
                                                      {2, ExampleBytes("77", true, false)},
                                                      {3, ExampleBytes("83", true, true)},
                                                      {0xFFFFFFFF, ExampleBytes("83", true, true)}};
  for (const auto& [version, bytes] : versions) {
    EXPECT_EQ(Packed(ExampleRecords(), version), bytes);
    ControllerRecords records;
    records.maker_name = "kept below version 1";
    ASSERT_TRUE(UnpackDescription(records, ExactBlock(bytes).view(), version));
    EXPECT_EQ(records.maker_name, version == 0 ? "kept below version 1" : "Z");
    EXPECT_EQ(records.mode_list[0].brightness_setting, version < 3 ? 0U : 50U);
    EXPECT_EQ(records.zone_list[0].color_view, records.color_table.data());
    EXPECT_EQ(records.zone_list[0].led_view, records.led_list.data());
    EXPECT_EQ(Packed(records, version), bytes);
  }
}

TEST(DescriptionFormat, ReadingAppendsBehindWhatIsThere) {
  ControllerRecords records = TwoZones();
  ASSERT_TRUE(UnpackDescription(records, Packed(ExampleRecords(), 3), 3));
  EXPECT_EQ(records.title, "AB");
  EXPECT_EQ(records.mode_list.size(), 3U);
  EXPECT_EQ(records.led_list.size(), 9U);
  EXPECT_EQ(records.led_list[8].hw_code, 7U);
  EXPECT_EQ(records.color_table, (std::vector<PackedColor>{1, 2, 3, 4, 5, 6, 7, 8, 0xFF}));
  EXPECT_EQ(records.zone_list[2].first_index, 8U);
  EXPECT_EQ(records.zone_list[0].led_view, records.led_list.data());
}

TEST(DescriptionFormat, FieldsOfOneWidthKeepTheirOrder) {
  ControllerRecords records;
  records.info_text_1 = "a";
  records.info_text_2 = "b";
  records.info_text_3 = "c";
  records.current_mode = 6;
  ZoneRecord zone = ZoneOf(2);
  zone.led_total_min = 1;
  zone.led_total_max = 9;
  records.zone_list = {zone};
  EXPECT_EQ(Packed(records, 0),
            Hex("3b 00 00 00 00 00 00 00 01 00 00 01 00 00 02 00 61 00 02 00 62 00 02 00 63 00 00 00 06 00 00 00 01 00 "
                "01 00 00 00 00 00 00 01 00 00 00 09 00 00 00 02 00 00 00 00 00 00 00 00 00"));
}

TEST(DescriptionFormat, ColourTableTakesTheLengthOfTheZones) {
  const std::string zone_of_2 = "01 00 01 00 00 01 00 00 00 02 00 00 00 02 00 00 00 02 00 00 00 00 00 00 00 ";
  for (const char* const colors : {"01 00 0a 00 00 00", "03 00 0a 00 00 00 00 00 00 00 0c 00 00 00"}) {
    ControllerRecords records;
    EXPECT_TRUE(UnpackDescription(records, Description(zone_of_2 + colors), 3));
    EXPECT_EQ(records.color_table, (std::vector<PackedColor>{10, 0}));
    EXPECT_EQ(records.zone_list[0].led_view, nullptr);  // two LEDs, but none in the list
  }
}

TEST(DescriptionFormat, GridTravelsWithItsZone) {
  const Bytes bytes = Description(
      "01 00 01 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 20 00 02 00 00 00 03 00 00 00 "
      "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00 05 00 00 00 06 00 00 00 00 00 00 00");
  ControllerRecords records;
  ASSERT_TRUE(UnpackDescription(records, ExactBlock(bytes).view(), 3));
  EXPECT_EQ(records.zone_list[0].grid->cells, (std::vector<std::uint32_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Packed(records, 3), bytes);
}

TEST(DescriptionFormat, EveryTruncationIsRefusedWholeAndBytesBehindTheLastFieldAreAccepted) {
  for (const std::uint32_t version : {0U, 1U, 3U}) {
    Bytes cut = Packed(ExampleRecords(), version);
    Bytes longer = cut;
    longer.resize(cut.size() + 5, 0xEE);
    ControllerRecords accepted;
    EXPECT_TRUE(UnpackDescription(accepted, ExactBlock(Sized(longer)).view(), version));
    while (!cut.empty()) {
      cut.pop_back();
      ControllerRecords records = TwoZones();
      for (const Bytes& bytes : {cut, Sized(cut)}) {  // with the old size in front, and with its own
        EXPECT_FALSE(UnpackDescription(records, ExactBlock(bytes).view(), version)) << cut.size();
      }
      EXPECT_EQ(Snapshot(records), Snapshot(TwoZones()));
    }
  }
}

TEST(DescriptionFormat, NulDecidesTheTextAndLengthMovesTheCursor) {
  // The title's length says 1 although its NUL comes later; the caption's says 4 although its NUL comes first.
  Bytes bytes =
      Hex("00 00 00 00 05 00 00 00 01 00 41 42 00 04 00 43 00 99 99 01 00 00 01 00 00 01 00 00 "
          "00 00 00 00 00 00 00 00 00 00 00 00");
  ControllerRecords records;
  // The next length is read behind the A: 42 00, more than the buffer holds.
  EXPECT_FALSE(UnpackDescription(records, Sized(bytes), 0));
  bytes.erase(bytes.begin() + 11, bytes.begin() + 13);
  ASSERT_TRUE(UnpackDescription(records, Sized(bytes), 0));
  EXPECT_EQ(records.title, "A\x04");
  EXPECT_EQ(records.caption, "C");

  // A length of 0 leaves the cursor in front of the text. A text without any NUL is refused.
  const Bytes no_length =
      Hex("22 00 00 00 05 00 00 00 00 00 01 00 00 01 00 00 01 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
  ASSERT_TRUE(UnpackDescription(records, no_length, 0));
  EXPECT_EQ(records.title, "\x01");
  EXPECT_FALSE(UnpackDescription(records, ExactBlock(Hex("0d 00 00 00 05 00 00 00 03 00 41 42 43")).view(), 0));
}

TEST(DescriptionFormat, WhatCouldNotBeWrittenAgainIsRefusedWhole) {
  const std::string led_total = "01 00 01 00 00 01 00 00 00 00 00 00 00 00 00 00 00 ";
  const std::string no_leds = " 00 00 00 00 00 00";
  const auto refused = [](const ControllerRecords& there, const Bytes& bytes) {
    ControllerRecords records = there;
    EXPECT_FALSE(UnpackDescription(records, bytes, 3));
    EXPECT_EQ(Snapshot(records), Snapshot(there));
  };
  ControllerRecords records;
  EXPECT_TRUE(UnpackDescription(records, Description(led_total + "ff ff 00 00" + no_leds), 3));
  refused(ControllerRecords(), Description(led_total + "00 00 01 00" + no_leds));
  // With the eight LEDs that are there, one too many; and a sum that wraps.
  refused(TwoZones(), Description(led_total + "f8 ff 00 00" + no_leds));
  refused(TwoZones(), Description(led_total + "f9 ff ff ff" + no_leds));

  ControllerRecords many_modes;
  many_modes.mode_list.resize(65535);
  refused(many_modes, Packed(ExampleRecords(), 3));

  // 16,382 cells, whose length would be 0 on the wire; and rows by columns that wrap.
  const std::string zone = "01 00 01 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 08 00 ";
  Bytes big_grid = Description(zone + "fe 3f 00 00 01 00 00 00");
  big_grid.resize(big_grid.size() + std::size_t{4} * 16382 + 6);
  refused(ControllerRecords(), Sized(big_grid));
  refused(ControllerRecords(), Description(zone + "00 00 01 00 00 00 01 00 00 00 00 00 00 00"));
}

TEST(DescriptionFormat, WriterCutsWhatItsCountsCannotTell) {
  ControllerRecords records;
  records.title = std::string("up to here\0not this", 19);
  records.caption.assign(70000, 'c');
  records.led_list.resize(65538);
  const Bytes bytes = Packed(records, 0);
  EXPECT_EQ(Bytes(bytes.begin() + 8, bytes.begin() + 21), Hex("0b 00 75 70 20 74 6f 20 68 65 72 65 00"));
  EXPECT_EQ(Bytes(bytes.begin() + 21, bytes.begin() + 24), Hex("ff ff 63"));
  EXPECT_EQ(bytes[21 + 2 + 65534], 0);
  // Two LEDs follow their count of 2, and no colours.
  EXPECT_EQ(Bytes(bytes.end() - 18, bytes.end()), Hex("02 00 01 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00"));
}

TEST(DescriptionFormat, SmallBufferCannotAskForMuchMemory) {
  const auto requested_for = [](const Bytes& bytes, bool expected) {
    ControllerRecords records;
    ArmAllocationFaults(UINT64_MAX / 2, false);
    EXPECT_EQ(UnpackDescription(records, bytes, 3), expected);
    DisarmAllocationFaults();
    EXPECT_LE(BytesRequestedWhileArmed(), 16 * bytes.size() + 262144);
  };
  // Counts without entries; and a zone that needs as many colours as there can be.
  requested_for(Description("ff ff"), false);
  requested_for(Description("00 00 ff ff"), false);
  requested_for(Description("01 00 01 00 00 01 00 00 00 00 00 00 00 00 00 00 00 ff ff 00 00 00 00 00 00 00 00"), true);

  // The smallest LED blocks, whose texts have length 0.
  Bytes leds = Description("00 00 ff ff");
  leds.resize(leds.size() + std::size_t{65535} * 6 + 2);
  requested_for(Sized(leds), true);

  // LED blocks of 263 bytes without a NUL between them: each text would run to the buffer's end.
  Bytes overlapping = Description("00 00 e8 03");
  for (int i = 0; i < 1000; ++i) {
    overlapping.insert(overlapping.end(), {0x01, 0x01});
    overlapping.resize(overlapping.size() + 261, 'x');
  }
  overlapping.resize(overlapping.size() + 3, 0);
  requested_for(Sized(overlapping), false);
}

}  // namespace
}  // namespace test
