#include "zarnctl/terminal.h"

namespace zarnctl {

// There are no lights to draw here.
bool StdoutShowsColors() { return false; }

LiveDrawing::LiveDrawing() = default;

LiveDrawing::~LiveDrawing() = default;

void LiveDrawing::Show(const std::string& /*text*/) {}

}  // namespace zarnctl
