#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/linux/lighting_access.h"
#include "platform/linux/linux_machine.h"
#include "platform/linux/read_file.h"
#include "platform/standin/hid_api.h"
#include "tests/support/hex.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;  // NOLINT(google-build-using-namespace): what literals are for
using test::Hex;
using test::WriteFile;

class LinuxMachineTest : public ::testing::Test {
 protected:
  void Plug(const char* name, const char* device, const char* uevent = "HID_ID=0003:00001209:00000001\n") const {
    WriteFile(folder / device / "device/uevent", uevent);
    WriteFile(folder / device / "device/report_descriptor", "\x06\x5A\xFF");
    WriteFile(places.nodes / name, "");
    fs::remove(places.sysfs / name);
    fs::create_directory_symlink(device, places.sysfs / name);
  }
  std::wstring Devices() {
    std::wostringstream words;
    for (const auto& [path, vendor, product, version, descriptor] : machine.HidDevices())
      words << path.substr(path.rfind('/')) << std::hex << ' ' << vendor << ':' << product << ' ' << descriptor.size();
    return words.str();
  }
  platform::OpenedHidDevice Open(const fs::path& path) { return OpenHidrawDevice(places, path.wstring(), resting); }
  /// The error of exchanges over `connection`, or a new one. Only an exchange that the node itself refuses opens it.
  LONG Exchange(const fs::path& path, std::shared_ptr<platform::HidConnection> connection = nullptr) {
    const int events = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    EXPECT_GE(inotify_add_watch(events, path.c_str(), IN_OPEN), 0);
    if (connection == nullptr) connection = Open(path).connection;
    platform::Bytes report = Hex("A1 01 02");
    const LONG error = connection->SetFeature(report);
    EXPECT_EQ(connection->GetFeature(report), error);
    std::array<char, 4096> buffer = {};
    EXPECT_EQ(read(events, buffer.data(), buffer.size()) > 0, error == ERROR_GEN_FAILURE);
    close(events);
    return error;
  }
  std::optional<platform::Bytes> Setting(std::wstring_view name) { return machine.RegistryValue(L"OEM\\A", name); }

  const test::TemporaryFolder temporary;
  const fs::path folder = temporary.path(), system = folder / "system.toml", user = folder / "user.toml";
  const platform::HidrawPlaces places = {folder, folder / "dev"};
  const fs::path node = places.nodes / "hidraw0";
  const std::shared_ptr<platform::RestingDevices> resting = std::make_shared<platform::RestingDevices>();
  platform::LinuxMachine machine{{places, folder / "tables", {system, user}}};
};

TEST_F(LinuxMachineTest, DevicesStandInTheOrderOfTheirNodesAndIncompleteOnesAreLeftOut) {
  EXPECT_TRUE(platform::FindHidrawDevices({folder / "missing", folder}).empty());
  Plug("hidraw10", "a", "HID_ID=0005:0000ABCD:0000000A");
  Plug("hidraw2", "b", "HID_NAME=HID_ID=0003:00000007:00000007\nHID_ID=0003:00001209:0000FFFF\nHID_UNIQ=\n");
  for (const char* const name : {"hidraw", "hidraw1x", "hiddev1"}) Plug(name, "named_oddly");
  const std::wstring whole = L"/hidraw2 1209:ffff 3/hidraw10 abcd:a 3";
  for (const char* const uevent : {"", "XHID_ID=3:1:1", "HID_ID=\n", "HID_ID=3:1\n", "HID_ID=3:1:\n", "HID_ID=3::1\n",
                                   "HID_ID=3:1:G\n", "HID_ID=3:1:1 \n", "HID_ID=3:1:100000001\n"}) {
    Plug("hidraw0", "broken", uevent);
    EXPECT_EQ(Devices(), whole) << uevent;
  }
  Plug("hidraw0", "going");
  EXPECT_EQ(Devices(), L"/hidraw0 1209:1 3" + whole);
  WriteFile(folder / "going/device/report_descriptor", "");
  EXPECT_EQ(Devices(), whole) << "an empty descriptor";
}

TEST_F(LinuxMachineTest, OnlyNodesThatAreThereAndAllowedAreOpened) {
  Plug("hidraw0", "a");
  for (const auto& path : {folder / "hidraw0", folder / "dev/../dev/hidraw0", folder / "dev/hidraw1", fs::path()})
    EXPECT_EQ(machine.OpenHidDevice(path.wstring()).error, ERROR_FILE_NOT_FOUND) << path;
  EXPECT_EQ(machine.OpenHidDevice(node.wstring()).device.report_descriptor, Hex("06 5A FF"));
  fs::permissions(folder, fs::perms::all);
  fs::permissions(node, fs::perms::none);
  std::ignore = seteuid(65534);  // root may read everything; for others this fails and changes nothing
  EXPECT_EQ(Open(node).error, ERROR_ACCESS_DENIED);
  std::ignore = seteuid(getuid());
}

TEST_F(LinuxMachineTest, ConnectionReachesItsOwnDeviceAloneAndNoneThatRests) {
  Plug("hidraw0", "a");
  Plug("hidraw1", "hanging");
  const auto used = Open(node).connection;
  const auto untouched = Open(node).connection;
  const auto hanging = Open(places.nodes / "hidraw1").connection;
  resting->Book(FindHidrawDevices(places).at(1).identity, 2s, true);
  EXPECT_EQ(Exchange(places.nodes / "hidraw1", hanging), ERROR_SEM_TIMEOUT);
  EXPECT_EQ(Open(places.nodes / "hidraw1").error, ERROR_SEM_TIMEOUT);
  EXPECT_EQ(Exchange(node, used), ERROR_GEN_FAILURE);
  Plug("hidraw0", "b");
  EXPECT_EQ(Exchange(node, used), ERROR_DEVICE_NOT_CONNECTED);
  EXPECT_EQ(Exchange(node, untouched), ERROR_DEVICE_NOT_CONNECTED);
  const auto refusing = Open(node).connection;
  int refused = 0;
  while (refused < 50 && refusing->SetFeature(Hex("A1 01 02")) == ERROR_GEN_FAILURE) ++refused;
  EXPECT_TRUE(refused > 10 && refused <= 31) << refused;
}

TEST_F(LinuxMachineTest, DevicesRestWhenTheyHaveCostTooMuchTime) {
  const auto rests_after = [this](int bookings, std::chrono::milliseconds time, bool failed, const char* device) {
    for (int i = 1; i <= bookings; ++i) {
      EXPECT_FALSE(resting->Contains(device)) << i;
      resting->Book(device, time, failed);
    }
    return resting->Contains(device);
  };
  EXPECT_TRUE(rests_after(1, 2s, true, "hangs"));
  EXPECT_TRUE(rests_after(1, 3s, false, "answers very late"));
  EXPECT_FALSE(rests_after(28, 0ms, true, "has refused some"));
  EXPECT_TRUE(rests_after(1, 0ms, true, "has refused some"));
  EXPECT_TRUE(rests_after(21, 200ms, false, "is slow each time"));
  EXPECT_FALSE(rests_after(1000, 100ms, false, "is on a radio link"));
  for (int i = 0; i < 40; ++i) resting->Book("is slow with each of its interfaces", 60ms, false, 16);
  EXPECT_TRUE(resting->Contains("is slow with each of its interfaces"));
  for (int i = 0; i < 30; ++i) {
    resting->Book("refuses every second time", 0ms, true);
    resting->Book("refuses every second time", 6ms, false);
  }
  EXPECT_TRUE(resting->Contains("refuses every second time"));
}

TEST_F(LinuxMachineTest, NodesWithKeysAreSharedByAFileOfRootsAlone) {
  WriteFile(user, "");
  EXPECT_FALSE(platform::KeyboardsAreShared(folder / "missing"));
  EXPECT_EQ(platform::KeyboardsAreShared(user), geteuid() == 0);
  fs::create_symlink(user, folder / "link");
  EXPECT_FALSE(platform::KeyboardsAreShared(folder / "link"));
  fs::permissions(user, fs::perms{0664});
  EXPECT_FALSE(platform::KeyboardsAreShared(user));
  fs::permissions(user, fs::perms{0644});
  fs::permissions(folder, fs::perms{0777});
  EXPECT_FALSE(platform::KeyboardsAreShared(user)) << "others could have renamed another file of root's";
}

TEST_F(LinuxMachineTest, FileIsReadWholeOrErrnoTellsWhyNot) {
  const auto why_not = [](const fs::path& file) {
    errno = 0;
    EXPECT_FALSE(platform::ReadFile(file)) << file;
    return errno;
  };
  WriteFile(user, "");
  EXPECT_EQ(platform::ReadFile(user), platform::Bytes());
  EXPECT_EQ(why_not(folder / "missing"), ENOENT);
  EXPECT_EQ(why_not(user / "below"), ENOTDIR);
  EXPECT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  for (const fs::path& file : {folder, folder / "fifo", fs::path("/dev/zero")}) EXPECT_EQ(why_not(file), EINVAL);
  fs::resize_file(user, 16'777'216);
  EXPECT_EQ(platform::ReadFile(user).value_or(platform::Bytes()).size(), 16'777'216U);
  fs::resize_file(user, 16'777'217);
  EXPECT_EQ(why_not(user), EFBIG);
}

TEST_F(LinuxMachineTest, SmbiosVersionStandsInTheEntryPoint) {
  EXPECT_FALSE(machine.ReadSmbiosTable());
  WriteFile(folder / "tables/DMI", "\xAC\x05\x01");
  EXPECT_TRUE(machine.ReadSmbiosTable());
  const auto read = [this](const char* entry_point) {
    WriteFile(folder / "tables/smbios_entry_point", entry_point);
    const auto [data, major, minor] = machine.ReadSmbiosTable().value_or(platform::SmbiosTable{});
    EXPECT_EQ(data, platform::Value(Hex("AC 05 01")));
    return platform::Bytes{std::get<std::uint8_t>(major), std::get<std::uint8_t>(minor)};
  };
  EXPECT_EQ(read("_SM_\x11\x22\x02\x5B\x33"), Hex("2 5B"));
  EXPECT_EQ(read("_SM3_\x11\x18\x03\x06\x44"), Hex("3 6"));
  for (const char* const broken : {"_SM_\x11\x22\x02", "_SM3_\x11\x18\x03", "_DMI_\x11\x18\x03\x06"})
    EXPECT_EQ(read(broken), Hex("0 0")) << broken;
}

TEST_F(LinuxMachineTest, ChangedSettingsFileIsReadAgainUnlessItCannotBeReadForAMoment) {
  const auto after_writing = [this](const char* value, int moment) {
    WriteFile(user, std::string("[registry.'OEM\\A']\nX = ") + value);
    fs::last_write_time(user, fs::last_write_time("/proc/self/exe") + std::chrono::seconds(moment));
    return Setting(L"X");
  };
  EXPECT_EQ(after_writing("1", 1), Hex("1 0 0 0"));
  EXPECT_EQ(after_writing("2", 2), Hex("2 0 0 0")) << "another time";
  EXPECT_EQ(after_writing("30", 2), Hex("1E 0 0 0")) << "another size";
  fs::rename(user, folder / "kept");
  EXPECT_EQ(after_writing("40", 2), Hex("28 0 0 0")) << "another file";
  fs::remove(user);
  ASSERT_EQ(mkfifo(user.c_str(), 0600), 0);
  EXPECT_EQ(Setting(L"X"), Hex("28 0 0 0"));
  EXPECT_EQ(platform::ReadSettingsFile(user).complaint, user.string() + ": cannot be read: Invalid argument");
  fs::remove(user);
  EXPECT_EQ(Setting(L"X"), std::nullopt);
  WriteFile(user, "");
  EXPECT_EQ(platform::ReadSettingsFile(user / "below").complaint, "") << "is not there";
  fs::resize_file(user, 16385);
  EXPECT_EQ(platform::ReadSettingsFile(user).complaint, user.string() + ": more than 16 KiB");
}

TEST_F(LinuxMachineTest, LaterSettingsFileWinsWhateverTheCaseButABrokenOneCountsForNothing) {
  WriteFile(system, "[registry.'oem\\a']\nX = 1\nMAX = 4294967295\n");
  WriteFile(user, "[registry.'Oem\\A']\nx = 0x1234\n");
  EXPECT_EQ(Setting(L"X"), Hex("34 12 0 0"));
  EXPECT_EQ(Setting(L"Max"), Hex("FF FF FF FF"));
  EXPECT_TRUE(machine.HasRegistryKey(L"OEM") && !machine.HasRegistryKey(L"OE"));
  const auto expect_complaint = [this](const char* end, const char* complaint) {
    WriteFile(user, std::string("[registry.'OEM\\A']\nX = 2\n") + end);
    EXPECT_EQ(Setting(L"X"), Hex("1 0 0 0")) << end;
    EXPECT_EQ(platform::ReadSettingsFile(user).complaint.find(user.string() + complaint), 0U) << end;
  };
  expect_complaint("Y = 4294967296", ":3: Y must be a whole number from 0 to 4294967295");
  expect_complaint("\nY = -1", ":4: Y must be a whole number from 0 to 4294967295");
  expect_complaint("[registry]\nY = 1", ":4: Y must be a table: [registry.'KEY\\KEY']");
  expect_complaint("x = 1", ":3: x is there already");
  expect_complaint("[else]", R"(:3: "else" is not known here, only tables: [registry.'KEY\KEY'])");
  expect_complaint("Y = ", ":3: ");
  expect_complaint(("Y" + std::string(1000, '.')).c_str(), ": more than 1000 dots, so deep no key may be");
}

TEST_F(LinuxMachineTest, ProgramDataIsBelowTheUsersStatesUnlessTheEnvironmentHasIt) {
  setenv("XDG_STATE_HOME", "/states", 1);
  EXPECT_EQ(machine.EnvironmentVariable(L"PROGRAMDATA"), L"/states/zarn");
  setenv("PROGRAMDATA", "/data/\xC3\xA9", 1);
  EXPECT_EQ(machine.EnvironmentVariable(L"PROGRAMDATA"), L"/data/\u00E9");
  for (const char* const odd : {"data", "/\xFF"}) {  // no path from the root, no UTF-8
    setenv("PROGRAMDATA", odd, 1);
    EXPECT_EQ(machine.EnvironmentVariable(L"PROGRAMDATA"), L"/states/zarn");
  }
  unsetenv("PROGRAMDATA");
  unsetenv("XDG_STATE_HOME");
  const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
  setenv("HOME", "/\xFF", 1);
  EXPECT_TRUE(machine.EnvironmentVariable(L"PROGRAMDATA").value_or(L"").ends_with(L"/.local/state/zarn"));
  setenv("HOME", home.c_str(), 1);
}

}  // namespace
