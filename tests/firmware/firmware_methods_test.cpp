#include "firmware/firmware_methods.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "firmware/wmi_connection.h"
#include "platform/wmi.h"
#include "tests/support/fault_driver.h"
#include "tests/support/hex.h"
#include "tests/support/machine_fixture.h"

namespace test {
namespace {

class FirmwareMethods : public MachineTest {
 protected:
  /// What the firmware answers from now on.
  void Answer(const NamedValues& out, HRESULT status = S_OK) {
    machine->answer = [=](const FirmwareCall&) { return FirmwareAnswer{status, out}; };
  }
  /// The only call since the last time.
  FirmwareCall TheCall() {
    const auto calls = machine->TakeCalls();
    EXPECT_EQ(calls.size(), 1U);
    return calls.empty() ? FirmwareCall() : calls.front();
  }

  std::uint32_t out32 = 0xDEAD;
  std::uint64_t out64 = 0xDEAD;
};

constexpr std::uint8_t kSixteen[16] = {1, 7, 30, 0, 2, 255, 0, 0, 3, 1, 0, 0, 0, 0, 0, 99};

TEST_F(FirmwareMethods, EachSendsItsInputAndDeliversItsOutput) {
  Answer({{L"gmOutput", std::uint32_t{0x1234}}});
  EXPECT_EQ(SetGamingLED(kSixteen, &out32, 8), 1);
  EXPECT_EQ(out32, 0x1234U);
  EXPECT_EQ(TheCall(), (FirmwareCall{L"ACPI\\ZARN\\0_0", L"SetGamingLED", Bytes(kSixteen, kSixteen + 8)}));
  EXPECT_EQ(SetGamingLED(nullptr, &out32, 0), 1);
  EXPECT_EQ(TheCall().input, Value(Bytes()));

  EXPECT_EQ(SetGamingKBBacklight(kSixteen, &out64), 1);
  EXPECT_EQ(out64, 0x1234U);
  EXPECT_EQ(TheCall(), (FirmwareCall{L"ACPI\\ZARN\\0_0", L"SetGamingKBBacklight", Bytes(kSixteen, kSixteen + 16)}));

  EXPECT_EQ(SetGamingRgbKb(UINT64_MAX), 1);
  EXPECT_EQ(TheCall(), (FirmwareCall{L"ACPI\\ZARN\\0_0", L"SetGamingRgbKb", L"18446744073709551615"}));
  EXPECT_EQ(machine->TakeSleeps(), std::vector<std::uint32_t>(4, 30));
}

TEST_F(FirmwareMethods, LedQueryDeliversReturnByteAndOutputBytes) {
  const Bytes output = Hex("10 11 12 13 14 15 16 17 18 19 1a 1b");
  std::vector<std::uint8_t> buffer;
  // Numbers of 64 bits come as text from the management service.
  for (const Value& gm_return : {Value(std::uint64_t{0xFFFFFF08}), Value(std::wstring(L"4294967048"))}) {
    Answer({{L"gmReturn", gm_return}, {L"gmOutput", output}});
    buffer.assign(11, 0xEE);
    EXPECT_EQ(GetGamingLED(buffer.data(), 11), 1);
    EXPECT_EQ(buffer, Hex("08 10 11 12 13 14 15 16 17 18 19"));
    EXPECT_EQ(TheCall(), (FirmwareCall{L"ACPI\\ZARN\\0_0", L"GetGamingLED", std::wstring(L"16")}));
  }

  buffer.assign(16, 0xEE);  // longer than what comes
  EXPECT_EQ(GetGamingLED(buffer.data(), 16), 1);
  EXPECT_EQ(buffer, Hex("08 10 11 12 13 14 15 16 17 18 19 1a 1b ee ee ee"));
  buffer.assign(1, 0xEE);
  EXPECT_EQ(GetGamingLED(buffer.data(), 1), 1);
  EXPECT_EQ(buffer, Hex("08"));
}

TEST_F(FirmwareMethods, AnswersThatCannotBeConvertedFailAndWriteNothing) {
  for (const Value& odd : {Value(platform::Null()), Value(std::wstring()), Value(Bytes{1}), Value(-1)}) {
    Answer({{L"gmOutput", odd}});
    const bool converts = odd == Value(-1);  // to the same 32 bits
    EXPECT_EQ(SetGamingLED(kSixteen, &out32, 8), converts);
    EXPECT_EQ(out32, converts ? 0xFFFFFFFFU : 0xDEADU);
    EXPECT_EQ(SetGamingRgbKb(1), converts);
  }
  std::vector<std::uint8_t> buffer(4, 0xEE);
  const std::vector<NamedValues> answers = {
      {{L"gmReturn", -1}, {L"gmOutput", Bytes{1, 2, 3}}},  // negative for an unsigned 64-bit number
      {{L"gmReturn", std::uint64_t{0}}, {L"gmOutput", std::wstring(L"text")}},  // raw bytes for some platforms
      {{L"gmReturn", std::uint64_t{0}}},                                        //
      {{L"gmOutput", Bytes{1, 2, 3}}}};
  for (const NamedValues& answer : answers) {
    Answer(answer);
    EXPECT_EQ(GetGamingLED(buffer.data(), 4), 0);
  }
  EXPECT_EQ(GetGamingLED(buffer.data(), 0), 0);
  EXPECT_EQ(buffer, Hex("ee ee ee ee"));
  EXPECT_EQ(machine->TakeSleeps().size(), 2U);  // only successes pause
}

TEST_F(FirmwareMethods, CallTakesItsStepsWithTheirArgumentsAndGivesAllBackBeforeThePause) {
  std::vector<std::string> steps;
  std::vector<std::string> calls;
  platform::SetJournal([&](const platform::JournalEntry& entry) {
    calls.push_back(entry.call);
    const bool is_step =
        !entry.call.starts_with("Variant") && !entry.call.starts_with("Sys") && !entry.call.ends_with("Release");
    if (is_step) steps.push_back(entry.call + "(" + entry.arguments + ")");
  });
  EXPECT_EQ(SetGamingRgbKb(1), 1);
  platform::SetJournal(nullptr);
  EXPECT_EQ(
      steps,
      (std::vector<std::string>{
          "CoInitializeEx(0)", "CoCreateInstance(1)", "IWbemLocator::ConnectServer(ROOT\\WMI, null, 0)",
          "CoSetProxyBlanket(10, 0, null, 3, 3, null, 0)",
          "IWbemServices::ExecQuery(WQL, SELECT * FROM ZarnGamingFunction, 48)", "IEnumWbemClassObject::Next(-1, 1)",
          "IWbemClassObject::Get(InstanceName)", "IWbemServices::GetObject(ZarnGamingFunction)",
          "IWbemClassObject::GetMethod(SetGamingRgbKb)", "IWbemClassObject::Put(gmInput, 1)",
          R"(IWbemServices::ExecMethod(ZarnGamingFunction.InstanceName="ACPI\\ZARN\\0_0", SetGamingRgbKb, gmInput=1))",
          "IWbemClassObject::Get(gmOutput)", "CoUninitialize()", "Sleep(30)"}));
  EXPECT_EQ(std::vector<std::string>(calls.end() - 6, calls.end()),
            (std::vector<std::string>{"VariantClear", "VariantClear", "IUnknown::Release", "IUnknown::Release",
                                      "CoUninitialize", "Sleep"}));
}

TEST_F(FirmwareMethods, FirstInstanceWithANameIsCalledUnlessItsPathDoesNotFit) {
  const auto called = [&](std::vector<Value> names) {
    machine->firmware.instance_names = std::move(names);
    const std::int32_t result = SetGamingRgbKb(1);
    const auto calls = machine->TakeCalls();
    EXPECT_EQ(calls.size(), static_cast<std::size_t>(result));
    return calls.empty() ? std::wstring() : calls.front().instance;
  };
  EXPECT_EQ(called({platform::Null(), Value(), L"A\\B", L"C"}), L"A\\B");
  // A path has room for 260: 34 characters around the name, and the terminator.
  EXPECT_EQ(called({std::wstring(225, L'x')}), std::wstring(225, L'x'));
  EXPECT_EQ(called({std::wstring(226, L'x')}), L"");
  EXPECT_EQ(called({std::wstring(113, L'\\')}), L"");
  EXPECT_EQ(called({}), L"");
  machine->has_firmware = false;
  EXPECT_EQ(called({L"A"}), L"");
}

TEST_F(FirmwareMethods, ThreadOfAnotherApartmentCallsAndKeepsItsCom) {
  std::thread([&] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(SetGamingRgbKb(1), 1);
    machine->has_firmware = false;
    EXPECT_EQ(SetGamingRgbKb(1), 0);
    EXPECT_EQ(platform::CountLive().com_initializations, 1);
    CoUninitialize();
  }).join();
}

TEST_F(FirmwareMethods, MethodWithoutInputNeedsNoParameterObject) {
  machine->firmware.methods.push_back({L"NoInput", false});
  WmiConnection connection;
  ASSERT_EQ(OpenWmiConnection(connection), 1);
  Variant value;
  const NamedVariant values[] = {{L"gmOutput", value}};
  EXPECT_EQ(ExecFirmwareMethod(connection, kFirmwareClass, L"NoInput", kFirmwareInstances, {}, values), 1);
  EXPECT_EQ(ExecFirmwareMethod(connection, kFirmwareClass, L"NoInput", kFirmwareInstances, values, values), 0);
}

TEST_F(FirmwareMethods, EveryFaultFailsTheCallAndLeavesNothing) {
  Answer({{L"gmOutput", std::uint32_t{5}}});
  const Bytes untouched(4, 0xEE);
  Bytes buffer = untouched;
  std::int32_t result = 0;
  const auto check = [&](const FaultRun& run) {
    EXPECT_FALSE(run.threw_bad_alloc);
    EXPECT_EQ(result, run.met ? 0 : 1);
    EXPECT_EQ(machine->TakeSleeps().size(), run.met ? 0U : 1U);
    EXPECT_TRUE(!run.met || (out32 == 0xDEAD && out64 == 0xDEAD && buffer == untouched));
    out32 = 0xDEAD;
    out64 = 0xDEAD;
    buffer = untouched;
    machine->TakeCalls();
  };
  FailInTurn([&] { result = SetGamingLED(kSixteen, &out32, 12); }, check);
  FailInTurn([&] { result = SetGamingKBBacklight(kSixteen, &out64); }, check);
  FailInTurn([&] { result = SetGamingRgbKb(7); }, check);
  Answer({{L"gmReturn", std::uint64_t{8}}, {L"gmOutput", Bytes{1, 2, 3}}});
  FailInTurn([&] { result = GetGamingLED(buffer.data(), 4); }, check);
}

}  // namespace
}  // namespace test
