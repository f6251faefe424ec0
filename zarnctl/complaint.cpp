#include "zarnctl/complaint.h"

#include <algorithm>
#include <cctype>
#include <iostream>

namespace zarnctl {

void Complain(std::string line) {
  // What the line quotes may hold anything; it stays one line, and the terminal takes no orders from it.
  std::replace_if(
      line.begin(), line.end(), [](unsigned char character) { return std::iscntrl(character) != 0; }, ' ');
  std::cerr << "zarnctl: " << line << "\n";
}

}  // namespace zarnctl
