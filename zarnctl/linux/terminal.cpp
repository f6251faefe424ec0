#include "zarnctl/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace zarnctl {
namespace {

// Line wrap is off during a drawing. A wrapped line would count as one, so the next drawing would begin too low.
constexpr std::string_view kHideCursor = "\033[?25l\033[?7l";
constexpr std::string_view kShowCursor = "\033[0m\033[?7h\033[?25h";

/// Set when the shell may have written over the drawing.
volatile std::sig_atomic_t g_drawing_is_gone = 0;

extern "C" {

/// For signals that end or stop the process. SA_RESETHAND has restored the default, so raising the signal again obeys
/// it, and the shell sees which one it was.
void RestoreTerminalAndObey(int signal) {
  const int code = errno;  // of the code that the signal interrupted
  [[maybe_unused]] const auto written = write(STDOUT_FILENO, kShowCursor.data(), kShowCursor.size());
  std::raise(signal);
  errno = code;
}

void ResumeDrawing(int signal);
}

constexpr std::array kSignals = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGCONT};
/// What the signals did before.
std::array<struct sigaction, kSignals.size()> g_dispositions;

void Handle(int signal, const struct sigaction& before) {
  if (before.sa_handler == SIG_IGN) return;  // as nohup sets it: the signal shall stay without effect
  struct sigaction action {};
  action.sa_handler = signal == SIGCONT ? ResumeDrawing : RestoreTerminalAndObey;
  action.sa_flags = SA_RESTART | (signal == SIGCONT ? 0 : static_cast<int>(SA_RESETHAND));
  sigaction(signal, &action, nullptr);
}

extern "C" void ResumeDrawing(int /*signal*/) {
  const int code = errno;
  for (std::size_t i = 0; i < kSignals.size(); ++i) Handle(kSignals[i], g_dispositions[i]);
  // In the background the terminal belongs to the shell.
  if (tcgetpgrp(STDOUT_FILENO) == getpgrp()) {
    [[maybe_unused]] const auto written = write(STDOUT_FILENO, kHideCursor.data(), kHideCursor.size());
  }
  g_drawing_is_gone = 1;
  errno = code;
}

}  // namespace

bool StdoutShowsColors() {
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  const bool is_dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return isatty(STDOUT_FILENO) == 1 && !is_dumb && (no_color == nullptr || *no_color == '\0');
}

LiveDrawing::LiveDrawing() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals.at(i), nullptr, &g_dispositions.at(i));
    Handle(kSignals.at(i), g_dispositions.at(i));
  }
  std::cout << kHideCursor << std::flush;
}

LiveDrawing::~LiveDrawing() {
  for (std::size_t i = kSignals.size(); i-- > 0;) sigaction(kSignals.at(i), &g_dispositions.at(i), nullptr);
  std::cout << kShowCursor << std::flush;
}

void LiveDrawing::Show(const std::string& text) {
  if (g_drawing_is_gone != 0) {
    g_drawing_is_gone = 0;
    lines_ = 0;
  }
  std::string frame;
  if (lines_ > 0) frame = "\033[" + std::to_string(lines_) + "A\r\033[J";
  std::cout << frame + text << std::flush;
  lines_ = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace zarnctl
