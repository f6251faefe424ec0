/// A road puts a simulated notebook under the plug-in. Each program of cases has one.
#pragma once

#include <memory>
#include <string>

#include "simulator/notebook.h"

namespace test {

/// What a case needs that not every road can carry.
enum class Need {
  OddSettings,  // a setting of the service that is no number of four bytes
  ShortStalls,  // a keyboard that leaves a request unanswered for as short a time as the case wants
};

class Road {
 public:
  virtual ~Road() = default;

  virtual std::string Name() const = 0;
  /// Why this road cannot carry a case with that need. Empty when it can.
  virtual std::string WhyNot(Need need) const = 0;
  /// Puts a notebook under the plug-ins that the process loads from now on.
  virtual void Place(const std::shared_ptr<simulator::Notebook>& notebook) = 0;
  /// Waits until the system has noticed what was plugged and unplugged.
  virtual void Settle() = 0;
  /// Tells the notebook what has reached its firmware, where another firmware takes the calls.
  virtual void CatchUp() {}
  /// Takes the notebook away, and checks that nobody still holds anything of it.
  virtual void TakeAway() = 0;
};

/// The road of this program.
Road& TheRoad();

}  // namespace test
