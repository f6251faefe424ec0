#include "zarnctl/complaint.h"

#include <iostream>

namespace zarnctl {

void Complain(const std::string& line) { std::cerr << "zarnctl: " << line << "\n"; }

}  // namespace zarnctl
