/// A keyboard with a USB lighting controller of its own: feature reports in and out, lights.
///
/// Knows bytes and nothing else. It packs the fields that its report descriptor declares back to back: a field of n
/// bits in n / 8 bytes, the lowest byte first. It refuses what no keyboard takes, with the reason. Threads: any,
/// several at once.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/ec_firmware.h"

namespace simulator {

/// What the keyboard shows, in the values that were sent.
struct HidLights {
  struct Zone {
    std::uint8_t mode = 0;  // the keyboard's own code; 2 is a static colour, 0 is dark
    std::uint8_t brightness = 0;
    std::uint8_t speed = 0;
    std::uint8_t direction = 0;
    Color color;

    friend bool operator==(const Zone&, const Zone&) = default;
  };
  std::vector<Zone> zones;

  friend bool operator==(const HidLights&, const HidLights&) = default;
};

class HidKeyboard {
 public:
  /// A field of a report, as the descriptor declares it.
  struct Field {
    std::uint16_t usage = 0;
    std::uint32_t bits = 0;
  };
  struct Settings {
    std::uint16_t vendor = 0x1209;
    std::uint16_t product = 0x0001;
    std::uint16_t usage_page = 0xFF5A;
    std::uint16_t usage = 1;
    /// Of feature reports in bytes, with the report id; from 3, and with room for a device id and the fields below.
    std::uint32_t report_length = 65;
    /// An ordinary keyboard's collection in front of the lighting collection.
    bool other_collection = false;
    bool plugged = true;
    /// Whether it answers the attribute report.
    bool answers = true;
    std::vector<std::uint8_t> device_ids = {0x21};
    /// How many device ids it claims to have, if that is a lie.
    std::optional<std::uint8_t> claimed_ids = {};
    /// The device id in its base information, if that is not the one asked for.
    std::optional<std::uint8_t> reply_id = {};
    std::uint16_t zones = 0;
    std::uint32_t effects = 0;  // bit n for the effect with code n + 1
    std::uint8_t info32 = 2;
    std::uint16_t info33 = 5;
    std::uint8_t info34 = 1;
    /// Declared fields of the base-information reply and of the update, in the order of the report.
    std::vector<Field> base_info = {{0x34, 8}, {0x32, 8}, {0x35, 16}, {0x33, 16}, {0x31, 32}};
    std::vector<Field> update = {{0x41, 8}, {0x43, 8}, {0x42, 8}, {0x44, 8},
                                 {0x45, 8}, {0x46, 8}, {0x47, 8}, {0x48, 16}};
    /// Recorded from a real keyboard, reports with their ids. Each that is not empty replaces what the settings above
    /// would make.
    std::vector<std::uint8_t> descriptor = {};
    std::vector<std::uint8_t> attribute_reply = {};
    std::vector<std::uint8_t> base_info_reply = {};
  };
  /// The usages that the fields of the two reports may have, in their order.
  static constexpr std::array<std::uint16_t, 5> kBaseInfoUsages{0x34, 0x32, 0x35, 0x33, 0x31};
  static constexpr std::array<std::uint16_t, 8> kUpdateUsages{0x41, 0x43, 0x42, 0x44, 0x45, 0x46, 0x47, 0x48};

  enum class Result { Done, Refused, NoAnswer, Gone };
  struct Answer {
    Result result = Result::Done;
    std::string refusal = {};               // why it is not Done
    std::vector<std::uint8_t> report = {};  // what was read
  };

  /// What goes wrong with exchanges.
  struct Misbehaviour {
    enum class Kind {
      Fail,   // the exchange is refused
      Stall,  // it ends without an answer after `stall_ms`, or at an unplug or a call of Misbehave
      Late,   // it is carried out after `stall_ms`
      Short   // a report that is read has its first two bytes alone
    };
    Kind kind = Kind::Fail;
    /// The first exchange that goes wrong, counted from 1; 0: none.
    std::uint32_t first = 1;
    bool once = false;
    std::uint32_t stall_ms = 5000;
  };

  explicit HidKeyboard(const Settings& settings);

  const Settings& settings() const { return settings_; }
  const std::vector<std::uint8_t>& report_descriptor() const { return report_descriptor_; }

  /// A connection for exchanges, which ends with the next unplug; nothing while it is unplugged.
  std::optional<std::uint64_t> Connect() const;
  Answer SetFeature(std::uint64_t connection, std::span<const std::uint8_t> report);
  Answer GetFeature(std::uint64_t connection, std::uint8_t report_id);

  HidLights Lights() const;

  /// It comes back with its lights as they were.
  void Plug();
  void Unplug();
  /// Replaces the misbehaviour before, and counts exchanges anew.
  void Misbehave(const Misbehaviour& misbehaviour);

 private:
  /// Counts an exchange. Answers it when the keyboard is unplugged, fails, or has stalled.
  std::optional<Answer> BeginExchange(std::uint64_t connection, std::unique_lock<std::mutex>& lock);
  /// Whether the last counted exchange goes wrong.
  bool Misbehaves() const;
  /// Applies an update. `data` begins behind the device id.
  Answer Update(std::span<const std::uint8_t> data);
  std::vector<std::uint8_t> Attributes() const;
  std::vector<std::uint8_t> BaseInfo() const;

  const Settings settings_;
  const std::vector<std::uint8_t> report_descriptor_;

  mutable std::mutex lock_;
  std::condition_variable changed_;
  // Guarded by lock_.
  bool plugged_;
  std::uint64_t connection_ = 1;
  Misbehaviour misbehaviour_{.first = 0};
  std::uint64_t behaviour_ = 0;  // counts calls of Misbehave
  std::uint32_t exchanges_ = 0;  // since the last one
  std::uint8_t asked_id_ = 0;
  HidLights lights_;
};

}  // namespace simulator
