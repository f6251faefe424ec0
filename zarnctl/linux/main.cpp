#include <algorithm>

#include "zarnctl/command_line.h"

int main(int argc, char** argv) {
  return static_cast<int>(zarnctl::Run(std::vector<std::string>(argv + std::min(argc, 1), argv + argc)));
}
