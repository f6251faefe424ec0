#include "zarnctl/terminal.h"

#include <unistd.h>

#include <algorithm>
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

void OnEndingSignals(void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) sigaction(signal, &action, nullptr);
}

}  // namespace

bool StdoutShowsColors() {
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  const bool is_dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return isatty(STDOUT_FILENO) == 1 && !is_dumb && (no_color == nullptr || *no_color == '\0');
}

LiveDrawing::LiveDrawing() {
  OnEndingSignals(RestoreTerminalAndEnd, static_cast<int>(SA_RESETHAND));
  std::cout << kHideCursor << std::flush;
}

LiveDrawing::~LiveDrawing() {
  std::cout << kShowCursor << std::flush;
  OnEndingSignals(SIG_DFL, 0);
}

void LiveDrawing::Show(const std::string& text) {
  std::string frame;
  if (lines_ > 0) frame = "\033[" + std::to_string(lines_) + "A\r\033[J";
  std::cout << frame + text << std::flush;
  lines_ = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace zarnctl
