/// The terminal: colours, and drawings that replace each other.
#pragma once

#include <string>

namespace zarnctl {

/// Whether stdout is a terminal that shows colours, and the person wants them (NO_COLOR is not set).
bool StdoutShowsColors();

/// Hides the cursor while it lives. The cursor comes back at the end, also when a signal such as Ctrl-C's ends the
/// process, and while a signal such as Ctrl-Z's stops it. One at a time.
class LiveDrawing {
 public:
  LiveDrawing();
  ~LiveDrawing();
  LiveDrawing(const LiveDrawing&) = delete;
  LiveDrawing& operator=(const LiveDrawing&) = delete;

  /// Draws `text`, whole lines, over the text before.
  void Show(const std::string& text);

 private:
  int lines_ = 0;
};

}  // namespace zarnctl
