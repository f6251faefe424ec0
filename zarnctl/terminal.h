/// The terminal: what was typed, colours, drawing in place.
#pragma once

#include <string>
#include <vector>

namespace zarnctl {

/// The words of the command line behind the program's name, in UTF-8, from what main was given.
std::vector<std::string> TypedWords(int argc, const char* const* argv);

/// Makes the terminal take what is written for UTF-8 while it lives.
class Utf8Terminal {
 public:
  Utf8Terminal();
  ~Utf8Terminal();  // NOLINT(performance-trivially-destructible): it is not on Windows
  Utf8Terminal(const Utf8Terminal&) = delete;
  Utf8Terminal& operator=(const Utf8Terminal&) = delete;

 private:
  unsigned code_page_before_ = 0;  // on Windows
};

/// Whether stdout is a terminal that shows colours, and the person wants them (NO_COLOR is not set).
bool StdoutShowsColors();

/// Hides the cursor while it lives and shows it again at the end, be it the end of the process by a signal of
/// those that a terminal or a user sends to end it. While the process is stopped, as by Ctrl-Z, the cursor is shown,
/// too. One at a time.
class LiveDrawing {
 public:
  LiveDrawing();
  ~LiveDrawing();
  LiveDrawing(const LiveDrawing&) = delete;
  LiveDrawing& operator=(const LiveDrawing&) = delete;

  /// Draws `text`, whole lines, in place of the one before.
  void Show(const std::string& text);

 private:
  int lines_ = 0;
};

}  // namespace zarnctl
