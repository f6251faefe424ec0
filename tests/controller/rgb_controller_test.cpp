#include "controller/rgb_controller.h"

#include <gtest/gtest.h>

#include <array>
#include <condition_variable>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "base/millisecond_sleep.h"
#include "tests/support/hex.h"

namespace test {
namespace {

/// A device that records its hardware operations, and can be held inside one.
class Device final : public RGBController {
 public:
  explicit Device(const std::vector<std::uint32_t>& zone_leds = {}) {
    for (const std::uint32_t count : zone_leds) AppendZone("zone", count);
    mode_list.resize(3);
  }
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  ~Device() override { StopWorker(); }

  void DefineLayout() override {}
  void DeviceSpareHook() override {}
  void WriteColorsToDevice() override { Operate("colors"); }
  void WriteZoneToDevice(std::int32_t) override {}
  void WriteLedToDevice(std::int32_t) override {}
  void WriteModeToDevice() override { Operate("mode"); }
  void SelectFirstMode() override {}

  using ControllerRecords::color_table;
  using ControllerRecords::zone_list;
  using RGBController::StopWorker;

  /// Every operation begun from now on waits for Release.
  void Hold() {
    const std::lock_guard lock(lock_);
    held_ = true;
  }
  void Release() {
    const std::lock_guard lock(lock_);
    held_ = false;
    changed_.notify_all();
  }
  /// Waits until `count` operations have begun, and answers which.
  std::string AwaitBegun(std::size_t count) {
    std::unique_lock lock(lock_);
    changed_.wait(lock, [&] { return count_ >= count; });
    return begun_;
  }
  /// All operations that ever ran, once the worker has ended.
  std::string AfterStop() {
    StopWorker();
    return AwaitBegun(0);
  }

  std::function<void()> during_operation = [] {};  // set while no operation runs

 private:
  void Operate(const char* name) {
    {
      std::unique_lock lock(lock_);
      begun_.append(count_++ > 0 ? " " : "").append(name);
      changed_.notify_all();
      changed_.wait(lock, [&] { return !held_; });
    }
    during_operation();
  }

  std::mutex lock_;
  std::condition_variable changed_;
  // Guarded by lock_.
  bool held_ = false;
  std::size_t count_ = 0;
  std::string begun_;
};

TEST(UpdateWorker, ModeGoesBeforeColoursInOnePass) {
  // In most rounds both requests are there before the worker wakes. No round may show a push twice.
  int in_one_pass = 0;
  for (int i = 0; i < 200; ++i) {
    Device device;
    device.RequestColorPush();
    device.RequestModePush();
    const std::string pushes = device.AwaitBegun(2);
    EXPECT_TRUE(pushes == "mode colors" || pushes == "colors mode") << pushes;
    in_one_pass += pushes == "mode colors" ? 1 : 0;
  }
  EXPECT_GT(in_one_pass, 0);
}

TEST(UpdateWorker, RequestsDuringAnOperationOfTheirKindAreAbsorbedAndOthersCoalesce) {
  Device device;
  device.Hold();
  device.RequestColorPush();
  device.AwaitBegun(1);
  device.RequestColorPush();
  device.RequestModePush();  // brings another pass, which would show colours that are still pending
  device.RequestModePush();
  device.Release();
  device.AwaitBegun(2);
  EXPECT_EQ(device.AfterStop(), "colors mode");
}

TEST(UpdateWorker, IdleWorkerStopsWithoutAnyOperation) {
  Device device;
  EXPECT_EQ(device.AfterStop(), "");
  device.StopWorker();  // again
  device.RequestColorPush();
  EXPECT_EQ(device.AfterStop(), "");
}

TEST(UpdateWorker, StoppingItFromItselfIsADeadlockErrorWhichStopsNothingAndEndsInTheWorker) {
  Device device;
  std::error_code error;
  device.during_operation = [&] {
    try {
      device.StopWorker();
    } catch (const std::system_error& caught) {
      error = caught.code();
      throw;
    }
  };
  device.RequestModePush();
  device.AwaitBegun(1);
  device.RequestColorPush();
  EXPECT_EQ(device.AwaitBegun(2), "mode colors");
  device.StopWorker();
  EXPECT_EQ(error, std::errc::resource_deadlock_would_occur);
}

TEST(RgbController, ColoursFollowTheZonesAndIndexesBeyondTheListsAndNullBuffersAreIgnored) {
  Device device({2, 0, 3});
  device.StoreLedColor(4, 0xABCDEF);
  device.StoreLedColor(5, 1);
  EXPECT_EQ(device.FetchLedColor(4), 0xABCDEFU);
  EXPECT_EQ(device.FetchLedColor(5), 0U);
  device.PaintZone(0, 1);
  for (const std::int32_t zone : {-1, 1, 3}) device.PaintZone(zone, 9);
  EXPECT_EQ(device.color_table, (std::vector<PackedColor>{1, 1, 0, 0, 0xABCDEF}));
  EXPECT_EQ(device.zone_list[1].color_view, nullptr);
  EXPECT_EQ(device.zone_list[1].led_view, nullptr);
  EXPECT_EQ(device.zone_list[1].first_index, 2U);
  EXPECT_EQ(device.zone_list[2].color_view, &device.color_table[2]);
  device.PaintAllZones(7);
  device.zone_list[0].led_total = 4;
  device.zone_list[2].led_total = 1000;
  device.PaintZone(2, 7);  // ends with the table, whatever the total has become
  device.zone_list[2].led_total = 3;
  device.RebindZoneStorage();
  EXPECT_EQ(device.color_table, (std::vector<PackedColor>{7, 7, 7, 7, 7, 0, 0}));
  device.UnpackDescription(nullptr, 3);
  device.UnpackModePacket(nullptr, 3);
  device.UnpackColorTablePacket(nullptr);
  device.UnpackZoneColorsPacket(nullptr);
  device.UnpackOneColorPacket(nullptr);
  EXPECT_EQ(device.AfterStop(), "");  // no push was requested
}

TEST(RgbController, ListenersAreCalledInOrderEachWithItsContext) {
  Device device;
  static std::string heard;
  heard.clear();
  std::array<char, 3> names = {'a', 'b', 'c'};
  const ChangeListenerFn lower = [](void* name) { heard += *static_cast<char*>(name); };
  const ChangeListenerFn upper = [](void* name) { heard += static_cast<char>(*static_cast<char*>(name) - 'a' + 'A'); };
  device.AddChangeListener(upper, &names[1]);
  device.AddChangeListener(lower, names.data());
  device.AddChangeListener(lower, &names[1]);
  device.RequestColorPush();
  device.ChooseMode(-5);  // any index, and nobody is told
  EXPECT_EQ(device.CurrentModeIndex(), -5);
  EXPECT_EQ(heard, "Bab");
  device.RemoveChangeListener(&names[1]);  // the first with that context, function and all
  device.RemoveChangeListener(&names[2]);
  device.AddChangeListener(nullptr, nullptr);
  device.NotifyChangeListeners();
  EXPECT_EQ(heard, "Babab");
  device.DropChangeListeners();
  device.NotifyChangeListeners();
  EXPECT_EQ(heard, "Babab");
}

/// A clock that only naps advance.
struct SteppedClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<SteppedClock>;
  static inline time_point current;
  static time_point now() { return current; }
};

TEST(MillisecondSleep, SleepsWholeMillisecondsUntilTheDeadline) {
  using std::chrono::milliseconds;
  using Naps = std::vector<std::int64_t>;
  /// A nap of more than 1 ms ends `early` before its time.
  const auto sleep = [](std::int64_t request, SteppedClock::duration start = {}, std::chrono::nanoseconds early = {}) {
    SteppedClock::current = SteppedClock::time_point(start);
    Naps naps;
    SleepMilliseconds<SteppedClock>(request, [&](milliseconds nap) {
      naps.push_back(nap.count());
      SteppedClock::current += nap > milliseconds(1) ? nap - early : nap;
    });
    return naps;
  };
  EXPECT_EQ(sleep(0), Naps{});
  EXPECT_EQ(sleep(-5), Naps{});
  EXPECT_EQ(sleep(20), Naps{20});
  EXPECT_EQ(sleep(20, {}, std::chrono::nanoseconds(1)), (Naps{20, 1}));
  EXPECT_EQ(sleep(86'400'001), (Naps{86'400'000, 1}));
  // A deadline beyond the clock's end is its end.
  EXPECT_EQ(sleep(INT64_MAX, SteppedClock::time_point::max().time_since_epoch() - milliseconds(3)), Naps{3});
}

}  // namespace
}  // namespace test
