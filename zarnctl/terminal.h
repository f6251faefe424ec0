/// Drawing in place on a terminal.
#pragma once

#include <string>

namespace zarnctl {

/// Whether stdout is a terminal that shows colours, and the person wants them (NO_COLOR is not set).
bool StdoutShowsColors();

/// Hides the cursor while it lives and shows it again at the end, be it the end of the process by a signal of
/// those that a terminal or a user sends to end it.
/// One at a time.
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
