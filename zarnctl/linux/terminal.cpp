#include "zarnctl/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace zarnctl {
namespace {

// Lines that wrap would be counted as one, and the next drawing would begin too low.
constexpr std::string_view kHideCursor = "\033[?25l\033[?7l";
constexpr std::string_view kShowCursor = "\033[0m\033[?7h\033[?25h";

extern "C" void RestoreTerminalAndEnd(int signal) {
  // Nothing can be done about a terminal that is gone.
  [[maybe_unused]] const auto written = write(STDOUT_FILENO, kShowCursor.data(), kShowCursor.size());
  // The disposition is back at its default, so that the shell sees which signal ended the process.
  std::raise(signal);
}

constexpr std::array kEndingSignals = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};
/// What they did before.
std::array<struct sigaction, kEndingSignals.size()> g_dispositions;

}  // namespace

std::vector<std::string> TypedWords(int argc, const char* const* argv) {
  return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

// It does that by itself here.
Utf8Terminal::Utf8Terminal() = default;

Utf8Terminal::~Utf8Terminal() = default;

bool StdoutShowsColors() {
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  const bool is_dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return isatty(STDOUT_FILENO) == 1 && !is_dumb && (no_color == nullptr || *no_color == '\0');
}

LiveDrawing::LiveDrawing() {
  struct sigaction action {};
  action.sa_handler = RestoreTerminalAndEnd;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
    sigaction(kEndingSignals.at(i), nullptr, &g_dispositions.at(i));
    // One that is ignored, as by nohup, does not end the process.
    if (g_dispositions.at(i).sa_handler != SIG_IGN) sigaction(kEndingSignals.at(i), &action, nullptr);
  }
  std::cout << kHideCursor << std::flush;
}

LiveDrawing::~LiveDrawing() {
  std::cout << kShowCursor << std::flush;
  for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
    sigaction(kEndingSignals.at(i), &g_dispositions.at(i), nullptr);
  }
}

void LiveDrawing::Show(const std::string& text) {
  std::string frame;
  if (lines_ > 0) frame = "\033[" + std::to_string(lines_) + "A\r\033[J";
  std::cout << frame + text << std::flush;
  lines_ = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace zarnctl
