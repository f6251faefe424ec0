/// Firmware methods on Linux: from the firmware's own description to the text of a call and back.

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/acpi_call.h"
#include "platform/linux/firmware_class.h"
#include "platform/linux/firmware_parameters.h"
#include "platform/linux/linux_machine.h"
#include "platform/linux/read_file.h"
#include "platform/standin/wmi_api.h"
#include "tests/support/hex.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using platform::Bytes;
using platform::FirmwareSearch;
using platform::Value;
using test::Hex;
using test::WriteFile;

constexpr char kGuid[] = "7B0C2A6E-51D3-4E0B-9C55-2F7A10E4C0DE";
constexpr char kBlobGuid[] = "05901221-D566-11D1-B2F0-00A0C9062910";

Bytes Blob() { return platform::ReadFile(ZARN_BINARY_MOF).value_or(Bytes()); }

TEST(BinaryMof, TellsClassesMethodsAndTypes) {
  const platform::BinaryMof mof = platform::ReadBinaryMof(Blob());
  EXPECT_EQ(mof.refusal, "");
  ASSERT_EQ(mof.classes.size(), 1U);
  EXPECT_EQ(mof.classes[0].name, L"ZarnGamingFunction");
  EXPECT_EQ(mof.classes[0].guid, L"{7B0C2A6E-51D3-4E0B-9C55-2F7A10E4C0DE}");
  std::vector<std::string> methods;
  for (const auto& method : mof.classes[0].methods) methods.push_back(Described(method));
  EXPECT_EQ(methods,
            (std::vector<std::string>{"2 SetGamingLED(in uint8 gmInput[], out uint32 gmOutput)",
                                      "4 GetGamingLED(in uint32 gmInput, out uint8 gmReturn, out uint8 gmOutput[15])",
                                      "6 SetGamingRgbKb(in uint64 gmInput, out uint32 gmOutput)",
                                      "20 SetGamingKBBacklight(in uint8 gmInput[16], out uint32 gmOutput)",
                                      "31 AnswerPackage(out uint32 gmReturn, out uint8 gmOutput[3])",
                                      "32 AnswerManyBytes(out uint8 gmOutput[])", "33 AnswerLate(out uint32 gmOutput)",
                                      "34 Echo(in uint8 gmInput[4], out uint8 gmOutput[4])",
                                      "35 AnswerEmpty(out uint64 gmOutput)", "36 AnswerNothing(out uint32 gmOutput)"}));
}

TEST(BinaryMof, IsRefusedWholeWhereverItIsCutOrWrong) {
  const Bytes blob = Blob();
  for (std::size_t size = 0; size < blob.size(); ++size) {
    const auto [classes, refusal] =
        platform::ReadBinaryMof(Bytes(blob.begin(), blob.begin() + static_cast<long>(size)));
    EXPECT_TRUE(classes.empty() && !refusal.empty()) << size;
  }
  const auto refusal_of = [](const char* hex) { return platform::ReadBinaryMof(Hex(hex)).refusal; };
  const std::string head = "46 4F 4D 42 01 00 00 00 ";
  EXPECT_EQ(refusal_of("46 4F 4D 43"), "it does not begin with FOMB");
  EXPECT_EQ(refusal_of("46 4F 4D 42 02 00 00 00"), "it has another version");
  EXPECT_EQ(refusal_of((head + "04 00 00 00 01 00 10 00 44 53 00 01").c_str()), "it announces more than 1 MiB");
  EXPECT_EQ(refusal_of((head + "04 00 00 00 08 00 00 00 44 53 00 04").c_str()),
            "the packed bytes do not begin with DS");
  // 'F' and a copy from 2 before it: 10 0110001, then 00 010000 and 1.
  EXPECT_EQ(refusal_of((head + "07 00 00 00 08 00 00 00 44 53 00 01 1A 11 02").c_str()),
            "the packed bytes copy from before their beginning");
}

TEST(FirmwareParameters, ValuesAreAlignedToTheirSizesAndFitTheirTypes) {
  const platform::MofType uint8{17, "uint8", 1};
  const platform::MofType sint16{2, "sint16", 2};
  const platform::MofType uint32{19, "uint32", 4};
  const platform::MofType uint64{21, "uint64", 8};
  const platform::MofType text{8, "string", 0};
  const platform::MofMethod method{L"M",
                                   1,
                                   {{L"a", &uint8, false, {}, true},
                                    {L"b", &sint16, false, {}, true},
                                    {L"c", &uint8, true, 3, true},
                                    {L"d", &uint64, false, {}, true},
                                    {L"r", &uint8},
                                    {L"s", &sint16},
                                    {L"t", &uint32},
                                    {L"u", &uint64},
                                    {L"v", &uint8, true, {}}}};
  const platform::NamedValues whole = {
      {L"a", std::uint8_t{0xA1}}, {L"B", L"-2"}, {L"c", Hex("01 02 03")}, {L"d", L"18446744073709551614"}};
  EXPECT_EQ(PackInput(method, whole), Hex("A1 00 FE FF 01 02 03 00 FE FF FF FF FF FF FF FF"));
  const auto packs = [&](const wchar_t* name, Value value) {
    platform::NamedValues in = whole;
    in.insert_or_assign(name, std::move(value));
    return PackInput(method, in).has_value();
  };
  EXPECT_TRUE(packs(L"a", 255) && packs(L"a", L"0") && packs(L"b", -32768) && packs(L"b", std::uint64_t{32767}));
  for (const Value& value : {Value(256), Value(-1), Value(L"256"), Value(L"1x"), Value(L""), Value(Bytes(1)), Value()})
    EXPECT_FALSE(packs(L"a", value));
  EXPECT_FALSE(packs(L"b", -32769) || packs(L"b", 32768) || packs(L"d", L"18446744073709551616"));
  EXPECT_TRUE(packs(L"c", Bytes(2)) && packs(L"c", Bytes(4))) << "the host's length counts, not the declared one";
  EXPECT_FALSE(packs(L"c", 1) || packs(L"unknown", 1));
  EXPECT_FALSE(PackInput(method, {}));
  EXPECT_FALSE(platform::PackInput({L"M", 1, {{L"a", &text, false, {}, true}}}, {{L"a", L"text"}}));

  const Bytes answer = Hex("05 00 FE FF 01 00 00 80 00 00 00 00 00 00 00 80 07 08");
  platform::NamedValues out = {{L"r", std::uint8_t{5}},
                               {L"s", -2},
                               {L"t", std::int32_t{-0x7FFFFFFF}},
                               {L"u", L"9223372036854775808"},
                               {L"v", Hex("07 08")}};
  EXPECT_EQ(UnpackOutput(method, answer), out);
  out.erase(L"v");
  EXPECT_EQ(UnpackOutput(method, std::span(answer).first(16)), out);
  out.erase(L"u");
  EXPECT_EQ(UnpackOutput(method, std::span(answer).first(15)), out) << "a number must be all there";
}

TEST(AcpiCall, AnswersAreBuffersNumbersAndPackages) {
  const auto bytes_of = [](const std::string& text) { return platform::ReadAcpiAnswer(text).bytes; };
  EXPECT_EQ(bytes_of("{0x01, 0xff, 0x2a}"), Hex("01 FF 2A"));
  EXPECT_EQ(bytes_of("0x80000001"), Hex("01 00 00 80"));
  EXPECT_EQ(bytes_of("[0x5, {0x01, 0x02, 0x03}, 0x6]"), Hex("05 00 00 00 01 02 03 00 06 00 00 00"));
  EXPECT_EQ(bytes_of("[[{0x09}], 0x1]"), Hex("09 00 00 00 01 00 00 00"));
  EXPECT_EQ(bytes_of("{0x01, 0x02,"), Hex("01 02")) << "cut";
  EXPECT_EQ(bytes_of("[0x5, {0x01, 0x02,"), Hex("05 00 00 00 01 02")) << "cut inside";
  // The module's text ends after 255 characters, wherever that is: in a number digits may be missing.
  std::string full;
  for (int i = 0; i < 40; ++i) full += "0x07, ";
  EXPECT_EQ(bytes_of("[{" + full + "0x07}, 0x1234").size(), 41U);
  for (const char* const rest : {"0x12, ", "0x123,", "0x1, 0"})
    EXPECT_EQ(bytes_of("[{" + full + "0x07}, " + rest).size(), 48U) << rest;
  EXPECT_EQ(bytes_of("[0x12345, {" + full + "0x07").size(), 45U);
  EXPECT_EQ(bytes_of("[0x1234, {" + full + "0x07,").size(), 45U);
  EXPECT_EQ(platform::ReadAcpiAnswer("[]").status, S_OK);
  EXPECT_EQ(platform::ReadAcpiAnswer("{}").status, S_OK);
  for (const char* const text : {"Error: AE_NOT_FOUND", "not called", "\"text\"", "Object type 0x14\n", "", "[", "0x",
                                 "0x100000000", "{0x100}", "{0x01 0x02}", "{0x01, 0x02", "0x1 ", "12", "{,0x01}"})
    EXPECT_EQ(platform::ReadAcpiAnswer(text).status, WBEM_E_FAILED) << text;
}

/// A folder that looks like the kernel's.
class FirmwareOnBusTest : public ::testing::Test {
 protected:
  static platform::LinuxPlaces PlacesIn(const fs::path& root) {
    WriteFile(root / "options", "quiet\n");
    return {{}, {}, {}, root / "bus", {root / "call", root / "options"}};
  }
  /// An object of a device, and its place.
  fs::path Add(const std::string& object, const std::string& device, const std::string& id = "ZG",
               const std::string& instances = "2") const {
    const fs::path node = folder / "devices" / device;
    fs::path place = node / "wmi_bus/wmi_bus" / object;
    WriteFile(node / "firmware_node/path", "\\_SB_." + device + "\n");
    WriteFile(node / "firmware_node/uid", "ZGF\n");
    WriteFile(place / "guid", object.substr(0, 36) + "\n");
    WriteFile(place / "object_id", id + "\n");
    WriteFile(place / "instance_count", instances + "\n");
    fs::create_directories(places.wmi_devices);
    fs::create_directory_symlink(place, places.wmi_devices / object);
    return place;
  }
  void AddBlob(const std::string& object, const std::string& device, const std::string& content) const {
    WriteFile(Add(object, device, "BM") / "bmof", content);
  }
  platform::FirmwareOnBus Find() const { return platform::FindFirmwareOnBus(places.wmi_devices); }
  /// All of the call's text, which replaces what was in the file.
  std::string Call(const wchar_t* method, const Value& input) {
    WriteFile(places.acpi_call.call_file, "");
    machine.CallFirmware(L"ACPI\\PNP0C14\\ZGF_1", method, {{L"gmInput", input}});
    return test::ContentOf(places.acpi_call.call_file);
  }

  const test::TemporaryFolder temporary;
  const fs::path folder = temporary.path();
  const platform::LinuxPlaces places = PlacesIn(folder);
  platform::LinuxMachine machine{places};
  const std::string blob = test::ContentOf(ZARN_BINARY_MOF);
};

TEST_F(FirmwareOnBusTest, TheSearchEndsWhereSomethingIsMissing) {
  EXPECT_EQ(Find().state, FirmwareSearch::NoBus);
  fs::create_directories(places.wmi_devices);
  EXPECT_EQ(Find().state, FirmwareSearch::NoDevices);
  Add(kGuid, "OTHR");
  EXPECT_EQ(Find().state, FirmwareSearch::NoBlobs);
  const fs::path first = Add(std::string(kBlobGuid) + "-0", "OTHR", "BM");
  EXPECT_EQ(Find().state, FirmwareSearch::NotShown);
  WriteFile(first / "bmof", test::ContentOf(fs::path(ZARN_BINARY_MOF).replace_filename("another_class")));
  EXPECT_EQ(Find().state, FirmwareSearch::NoClass);
  AddBlob(std::string(kBlobGuid) + "-2", "BRKN", "nonsense");
  EXPECT_EQ(Find().state, FirmwareSearch::Unreadable) << "it could have named the class";
  EXPECT_TRUE(Find().detail.ends_with("-2/bmof: it does not begin with FOMB")) << Find().detail;
  AddBlob(std::string(kBlobGuid) + "-1", "WZRN", blob);
  EXPECT_EQ(Find().state, FirmwareSearch::NoGuid) << "the GUID is another device's";
  EXPECT_EQ(Find().detail, kGuid);
  EXPECT_FALSE(machine.FindFirmwareClass());
  const fs::path place = Add(std::string(kGuid) + "-1", "WZRN");
  for (const auto& [attribute, broken] : {std::pair("object_id", ""), {"object_id", "Z"}, {"instance_count", "0"}}) {
    const std::string sound = test::ContentOf(place / attribute);
    WriteFile(place / attribute, broken);
    EXPECT_EQ(Find().state, FirmwareSearch::NoGuid) << attribute;
    WriteFile(place / attribute, sound);
  }
  EXPECT_EQ(Find().state, FirmwareSearch::Found);
  EXPECT_EQ(Find().acpi_method, "\\_SB_.WZRN.WMZG");
  EXPECT_EQ(Find().driver, "");
  fs::create_directory_symlink("../drivers/somebody", place / "driver");
  EXPECT_EQ(Find().driver, "somebody");
  const auto found = machine.FindFirmwareClass();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->instance_names, (std::vector<Value>{L"ACPI\\PNP0C14\\ZGF_0", L"ACPI\\PNP0C14\\ZGF_1"}));
  EXPECT_EQ(found->methods.size(), 10U);
  EXPECT_TRUE(found->methods[0].has_input && !found->methods[8].has_input);
  WriteFile(folder / "devices/WZRN/firmware_node/uid", "a\"b,\\\xE9\n");
  EXPECT_EQ(Find().instances.at(1), L"ACPI\\PNP0C14\\a_b____1");
  WriteFile(folder / "devices/WZRN/firmware_node/path", "\\_SB_.WZRN 0 1\n");  // a blank would end the path in a call
  EXPECT_EQ(Find().state, FirmwareSearch::Unreadable);
  EXPECT_TRUE(machine.FindFirmwareClass()) << "what was found stays";
}

TEST_F(FirmwareOnBusTest, CallsAreWordsInAFile) {
  AddBlob(kBlobGuid, "WZRN", blob);
  Add(kGuid, "WZRN");
  EXPECT_EQ(Call(L"SetGamingKBBacklight", Hex("01 07 1E 00 02 FF 00 00 03 01 00 00 00 00 00 00")),
            "\\_SB_.WZRN.WMZG 1 20 b01071e0002ff00000301000000000000");
  EXPECT_EQ(Call(L"SetGamingRgbKb", L"4278190081"), "\\_SB_.WZRN.WMZG 1 6 b010000ff00000000");
  EXPECT_EQ(Call(L"GetGamingLED", L"16"), "\\_SB_.WZRN.WMZG 1 4 b10000000");
  EXPECT_EQ(Call(L"SetGamingLED", Hex("08 00 00 00 00 0F 00 00")), "\\_SB_.WZRN.WMZG 1 2 b08000000000f0000");
  for (const auto& [method, input] :
       {std::pair(L"GetGamingLED", Value(L"4294967296")), {L"SetGamingLED", Bytes(300)}, {L"NoSuchMethod", 1}})
    EXPECT_EQ(Call(method, input), "") << method;

  const auto status = [](platform::Machine& used) {
    return used.CallFirmware(L"ACPI\\PNP0C14\\ZGF_0", L"GetGamingLED", {{L"gmInput", L"16"}}).status;
  };
  EXPECT_EQ(status(machine), WBEM_E_FAILED) << "an answer that is none";
  WriteFile(places.acpi_call.command_line, "quiet acpi=strict panic=1\n");
  platform::LinuxMachine strict(places);
  EXPECT_EQ(status(strict), WBEM_E_PROVIDER_LOAD_FAILURE) << "the module could crash";
  fs::permissions(folder, fs::perms::all);
  fs::permissions(places.acpi_call.call_file, fs::perms::none);
  std::ignore = seteuid(65534);
  EXPECT_EQ(status(machine), WBEM_E_ACCESS_DENIED);
  std::ignore = seteuid(getuid());
  fs::remove(places.acpi_call.call_file);
  EXPECT_EQ(status(machine), WBEM_E_PROVIDER_LOAD_FAILURE);
}

}  // namespace
