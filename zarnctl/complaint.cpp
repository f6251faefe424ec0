#include "zarnctl/complaint.h"

#include <iostream>

#include "zarnctl/text.h"

namespace zarnctl {

void Complain(const std::string& line) { std::cerr << "zarnctl: " << Harmless(line) << "\n"; }

}  // namespace zarnctl
