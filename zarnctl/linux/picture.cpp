#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <string_view>

#include "zarnctl/commands.h"
#include "zarnctl/description.h"
#include "zarnctl/drawing.h"
#include "zarnctl/linux/new_file.h"
#include "zarnctl/lit_keys.h"
#include "zarnctl/session.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

// In pixels.
constexpr int kColumn = 14;
constexpr int kRow = 44;
constexpr int kKeyHeight = 34;
constexpr int kMargin = 24;
constexpr int kTextHeight = 34;
constexpr int kPictureWidth = kKeyColumns * kColumn + 2 * kMargin;

/// The moment of an effect that is drawn, in seconds. Any two effects look different by then.
constexpr double kMoment = 1.5;

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : Harmless(text)) {
    escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
  }
  return escaped;
}

std::string DrawnKey(const LitKey& key, int top) {
  const auto [red, green, blue] = ShownColor(key.light);
  std::array<char, 128> text{};
  std::snprintf(text.data(), text.size(), R"(<rect x="%d" y="%d" width="%d" height="%d" rx="5" fill="#%02x%02x%02x"/>)",
                kMargin + key.left * kColumn, top + key.row * kRow, key.width * kColumn, kKeyHeight, red, green, blue);
  return std::string(text.data()) + "\n";
}

/// The panels below each other, each under its headline.
std::string Svg(const std::vector<Panel>& panels, const std::vector<ModeRecord>& modes) {
  std::string body;
  int top = kMargin;
  for (const Panel& panel : panels) {
    body += "<text x=\"" + std::to_string(kMargin) + "\" y=\"" + std::to_string(top + 14) + "\">" +
            Escaped(Headline(panel, modes)) + "</text>\n";
    top += kTextHeight;
    const std::vector<LitKey> keys = LitKeys(panel, kMoment);
    for (const LitKey& key : keys) body += DrawnKey(key, top);
    top += (keys.back().row + 1) * kRow + kMargin;
  }
  const std::string size = std::to_string(kPictureWidth) + " " + std::to_string(top);
  return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 )" + size +
         R"(" font-family="sans-serif" font-size="16" fill="#d0d0d0">
<rect width="100%" height="100%" rx="12" fill="#101014"/>
)" + body +
         "</svg>\n";
}

/// Does what `set` or `leds` would, when a mode or colours were typed.
ExitCode ChangeLights(Session& session, const TypedValues& typed) {
  const auto settings = WithModeOptions({}, false);
  const bool mode =
      std::ranges::any_of(settings, [&](const auto& option) { return typed.Find(option.name) != nullptr; });
  const bool colors = typed.Find("COLOR") != nullptr;
  if (mode && colors) {
    throw Wrong("picture: give a mode or colours for the LEDs, not both");
  }
  if (mode && (typed.Find("DEVICE") == nullptr || typed.Find("--mode") == nullptr)) {
    throw Wrong("picture: settings need a DEVICE and its --mode");
  }
  return mode ? RunSet(session, typed) : colors ? RunLeds(session, typed) : ExitCode::Done;
}

}  // namespace

ExitCode RunPicture(Session& session, const TypedValues& typed) {
  if (session.hardware().Panels().empty()) {
    throw Complaint(ExitCode::NothingThere,
                    "picture: the lights of " + session.hardware().Name() + " cannot be looked at; use --machine");
  }
  const std::string* const device = typed.Find("DEVICE");
  const std::string name = device != nullptr ? session.FindName(*device) : session.Names().front();
  const ExitCode code = ChangeLights(session, typed);
  const std::vector<ModeRecord> modes = Describe(session.Create(name)).mode_list;
  const std::string& file = *typed.Find("FILE");
  WriteNewFile(PathFromUtf8(file), Svg(session.hardware().Panels(), modes));
  std::cout << "written to " << Harmless(file) << "\n";
  return code;
}

}  // namespace zarnctl
