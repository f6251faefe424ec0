#include "zarnctl/terminal.h"

namespace zarnctl {

// Lights cannot be seen on this system, so nothing is drawn.
bool StdoutShowsColors() { return false; }

LiveDrawing::LiveDrawing() = default;

LiveDrawing::~LiveDrawing() = default;

void LiveDrawing::Show(const std::string& /*text*/) {}

}  // namespace zarnctl
