#include "zarnctl/complaint.h"

#include <iostream>

#include "zarnctl/text.h"

namespace zarnctl {

void Complain(const std::string& line) { std::cerr << "zarnctl: " << Harmless(line) << "\n"; }

bool Complain(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) Complain(line);
  return !lines.empty();
}

}  // namespace zarnctl
