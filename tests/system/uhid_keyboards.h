/// Plugs the keyboards of a simulated notebook into this computer's kernel, as uhid devices. Needs root and the module.
#pragma once

#include <memory>
#include <vector>

#include "simulator/notebook.h"

namespace test {

class UhidKeyboard;

/// Each device is plugged in and out as its simulated keyboard is. Destruction unplugs all.
class UhidKeyboards {
 public:
  explicit UhidKeyboards(const std::shared_ptr<simulator::Notebook>& notebook);
  UhidKeyboards(const UhidKeyboards&) = delete;
  UhidKeyboards& operator=(const UhidKeyboards&) = delete;
  ~UhidKeyboards();

  /// Waits until the kernel has a node for each keyboard that is plugged in, and none for the others.
  void Settle() const;

 private:
  std::vector<std::unique_ptr<UhidKeyboard>> keyboards_;
};

}  // namespace test
