#include "controller/packet_formats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "tests/controller/format_fixture.h"
#include "tests/support/hex.h"

namespace test {
namespace {

/// A second mode for TwoZones. All its numbers differ, so that no two fields can be mixed up.
ModeRecord Numbered() {
  ModeRecord mode;
  mode.label = "Mo";
  mode.hw_code = -1;
  std::uint32_t next = 0x11;
  for (std::uint32_t* field :
       {&mode.capabilities, &mode.speed_lowest, &mode.speed_highest, &mode.brightness_lowest, &mode.brightness_highest,
        &mode.color_count_least, &mode.color_count_most, &mode.speed_setting, &mode.brightness_setting,
        &mode.direction_setting, &mode.color_source}) {
    *field = next++;
  }
  mode.mode_colors = {0xFF0000FF, 0x00ABCDEF};
  return mode;
}

const Bytes kNumberedAt3 = Hex(
    "47 00 00 00 01 00 00 00 03 00 4d 6f 00 ff ff ff ff 11 00 00 00 12 00 00 00 13 00 00 00 14 00 00 00 15 00 00 00 "
    "16 00 00 00 17 00 00 00 18 00 00 00 19 00 00 00 1a 00 00 00 1b 00 00 00 02 00 ff 00 00 ff ef cd ab 00");
const Bytes kNumberedAt2 =
    Hex("3b 00 00 00 01 00 00 00 03 00 4d 6f 00 ff ff ff ff 11 00 00 00 12 00 00 00 13 00 00 00 "
        "16 00 00 00 17 00 00 00 18 00 00 00 1a 00 00 00 1b 00 00 00 02 00 ff 00 00 ff ef cd ab 00");

TEST(PacketFormats, ModePacketChoosesItsModeAndBelowVersion3KeepsItsBrightness) {
  ControllerRecords source = TwoZones();
  source.mode_list[1] = Numbered();
  EXPECT_EQ(Copy(PackModePacket(source, 1, 3)), kNumberedAt3);
  EXPECT_EQ(Copy(PackModePacket(source, 1, 2)), kNumberedAt2);

  ControllerRecords target = TwoZones();
  target.mode_list[1].mode_colors = {1, 2, 3};
  ASSERT_TRUE(UnpackModePacket(target, ExactBlock(kNumberedAt3).view(), 3));
  source.current_mode = 1;
  EXPECT_EQ(Snapshot(target), Snapshot(source));

  target.mode_list[1].label.clear();
  target.mode_list[1].speed_setting = 0;
  target.mode_list[1].brightness_setting = source.mode_list[1].brightness_setting = 3;
  ASSERT_TRUE(UnpackModePacket(target, kNumberedAt2, 0));
  EXPECT_EQ(Snapshot(target), Snapshot(source));
}

TEST(PacketFormats, ColourPacketsHaveTheirBytesAndReplaceTheirColoursOnly) {
  ControllerRecords records = TwoZones();
  EXPECT_EQ(Copy(PackColorTablePacket(records.color_table)),
            Hex("26 00 00 00 08 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00 05 00 00 00 06 00 00 00 07 00 00 00 "
                "08 00 00 00"));
  EXPECT_EQ(Copy(PackZoneColorsPacket(records, 1)),
            Hex("16 00 00 00 01 00 00 00 03 00 06 00 00 00 07 00 00 00 08 00 00 00"));
  EXPECT_EQ(Copy(PackOneColorPacket(records, 7)), Hex("07 00 00 00 08 00 00 00"));

  EXPECT_TRUE(UnpackColorTablePacket(records, Hex("0e 00 00 00 02 00 ff 00 00 00 00 ff 00 00")));
  EXPECT_TRUE(UnpackZoneColorsPacket(records, Hex("12 00 00 00 01 00 00 00 02 00 11 00 00 00 22 00 00 00")));
  EXPECT_TRUE(UnpackOneColorPacket(records, ExactBlock(Hex("02 00 00 00 aa bb cc dd")).view()));
  EXPECT_EQ(records.color_table, (std::vector<PackedColor>{0xFF, 0xFF00, 0xDDCCBBAA, 4, 5, 0x11, 0x22, 8}));
}

using Unpack = std::function<bool(ControllerRecords&, std::span<const std::uint8_t>)>;
const Unpack kUnpackMode = [](ControllerRecords& records, std::span<const std::uint8_t> packet) {
  return UnpackModePacket(records, packet, 3);
};

void ExpectIgnored(const Unpack& unpack, const Bytes& packet, ControllerRecords records = TwoZones()) {
  const Bytes before = Snapshot(records);
  EXPECT_FALSE(unpack(records, ExactBlock(packet).view())) << ::testing::PrintToString(packet);
  EXPECT_EQ(Snapshot(records), before);
}

TEST(PacketFormats, IndexesOutsideTheListsAndColourListsThatDoNotFitAreIgnored) {
  for (const std::string index : {"02 00 00 00", "ff ff ff ff"}) {  // the number of modes and of zones, and -1
    Bytes packet = kNumberedAt3;
    std::ranges::copy(Hex(index), packet.begin() + 4);
    ExpectIgnored(kUnpackMode, packet);
    ExpectIgnored(UnpackZoneColorsPacket, Hex("0e 00 00 00 " + index + " 01 00 01 00 00 00"));
  }
  // What writers make of such an index is ignored, too.
  ControllerRecords records = TwoZones();
  for (const std::int32_t index : {-1, 8, INT32_MAX, INT32_MIN}) {
    ExpectIgnored(kUnpackMode, Copy(PackModePacket(records, index, 3)));
    ExpectIgnored(UnpackZoneColorsPacket, Copy(PackZoneColorsPacket(records, index)));
    ExpectIgnored(UnpackOneColorPacket, Copy(PackOneColorPacket(records, index)));
  }
  records.led_list.resize(9);  // more than there are colours
  ExpectIgnored(UnpackOneColorPacket, Hex("08 00 00 00 01 00 00 00"), records);

  ExpectIgnored(UnpackColorTablePacket, Hex("06 00 00 00 00 00"));
  Bytes nine = Hex("2a 00 00 00 09 00");
  nine.resize(nine.size() + 36, 1);
  ExpectIgnored(UnpackColorTablePacket, nine);
  ExpectIgnored(UnpackZoneColorsPacket, Hex("0a 00 00 00 00 00 00 00 00 00"));
  ExpectIgnored(UnpackZoneColorsPacket,
                Hex("1a 00 00 00 01 00 00 00 04 00 01 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00"));
}

TEST(PacketFormats, EveryTruncationIsIgnoredWhole) {
  const ControllerRecords records = TwoZones();
  const std::vector<std::pair<Unpack, Bytes>> packets = {
      {kUnpackMode, kNumberedAt3},
      {UnpackColorTablePacket, Copy(PackColorTablePacket(records.color_table))},
      {UnpackZoneColorsPacket, Copy(PackZoneColorsPacket(records, 0))},
      {UnpackOneColorPacket, Copy(PackOneColorPacket(records, 0))}};
  for (const auto& [unpack, whole] : packets) {
    for (std::size_t size = 0; size < whole.size(); ++size) {
      Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      ExpectIgnored(unpack, cut);
      if (size >= 4 && whole.size() > kOneColorPacketSize) cut[0] = static_cast<std::uint8_t>(size);
      ExpectIgnored(unpack, cut);
    }
  }
}

}  // namespace
}  // namespace test
