/// Finding lighting devices among many on Linux, compared with the bare system calls that read the same files once. It
/// runs on a copy of sysfs, so it needs no devices and exchanges nothing.

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "hid/ts_hid.h"
#include "log/logger.h"
#include "platform/linux/linux_machine.h"
#include "platform/standin/machine.h"
#include "simulator/hid_keyboard.h"

namespace {

namespace fs = std::filesystem;

/// The hidraw nodes of so many devices, as in sysfs. The last one is a lighting keyboard.
class Sysfs {
 public:
  explicit Sysfs(int devices) {
    std::string pattern = fs::temp_directory_path() / "zarn_bench_XXXXXX";
    if (mkdtemp(pattern.data()) != nullptr) folder_ = pattern;
    fs::create_directories(places.hidraw.sysfs = folder_ / "class");
    fs::create_directories(places.hidraw.nodes = folder_ / "dev");
    for (int i = 0; i < devices; ++i) Plug(std::to_string(i), i + 1 == devices);
  }
  Sysfs(const Sysfs&) = delete;
  Sysfs& operator=(const Sysfs&) = delete;
  ~Sysfs() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  platform::LinuxPlaces places;

 private:
  void Plug(const std::string& number, bool lighting) const {
    simulator::HidKeyboard::Settings settings;
    settings.usage_page = lighting ? 0xFF5A : 0xFF00;
    const std::vector<std::uint8_t> descriptor = simulator::HidKeyboard(settings).report_descriptor();
    const fs::path device = folder_ / ("0003:1209:0001.000" + number);
    fs::create_directories(device / "device");
    std::ofstream(device / "device/uevent") << "DRIVER=hid-generic\nHID_ID=0003:00001209:00000001\nHID_NAME=Keyboard\n";
    std::ofstream(device / "device/report_descriptor")
        .write(reinterpret_cast<const char*>(descriptor.data()), static_cast<std::streamsize>(descriptor.size()));
    fs::create_directory_symlink(device, places.hidraw.sysfs / ("hidraw" + number));
    std::ofstream(places.hidraw.nodes / ("hidraw" + number)).put('\0');
  }

  fs::path folder_;
};

void FindLightingDevices(benchmark::State& state) {
  zarn::WRV520::ReplaceLogger(std::make_shared<zarn::WRV520::TsLogAdapter>(nullptr));
  const Sysfs sysfs(static_cast<int>(state.range(0)));
  platform::UseMachine(std::make_shared<platform::LinuxMachine>(sysfs.places));
  for ([[maybe_unused]] auto _ : state) {
    std::vector<_HIDDevice> found;
    zarn::WRV520::TsHID::GetHIDDeviceHandle([](std::uint16_t, std::uint16_t) { return true; },
                                            [](const HIDP_CAPS& caps) { return caps.UsagePage == 0xFF5A; }, found);
    if (found.size() != 1) state.SkipWithError("not found");
    for (const _HIDDevice& device : found) CloseHandle(device.handle);
  }
}
BENCHMARK(FindLightingDevices)->Arg(2)->Arg(8);

void ReadWhole(const fs::path& file) {
  std::array<char, 4096> block{};
  const int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  while (read(fd, block.data(), block.size()) > 0) {
  }
  close(fd);
}

void ReadTheSameFilesOnce(benchmark::State& state) {
  const Sysfs sysfs(static_cast<int>(state.range(0)));
  const fs::path& folder = sysfs.places.hidraw.sysfs;
  for ([[maybe_unused]] auto _ : state) {
    DIR* const nodes = opendir(folder.c_str());
    while (const dirent* const node = readdir(nodes)) {
      if (node->d_name[0] == '.') continue;
      std::array<char, 256> target{};
      benchmark::DoNotOptimize(readlink((folder / node->d_name).c_str(), target.data(), target.size()));
      ReadWhole(folder / node->d_name / "device/uevent");
      ReadWhole(folder / node->d_name / "device/report_descriptor");
    }
    closedir(nodes);
  }
}
BENCHMARK(ReadTheSameFilesOnce)->Arg(2)->Arg(8);

}  // namespace
