/// The ways by which a simulated notebook gets under the plug-in. Each program of cases runs on one of them.
#pragma once

#include <memory>
#include <string>

#include "simulator/notebook.h"

namespace test {

/// What a case needs that not every road can carry.
enum class Need {
  Firmware,     // methods, and a record of the notebook's own
  ShortStalls,  // requests that end without an answer as soon as the keyboard is told to end them
};

class Road {
 public:
  virtual ~Road() = default;

  virtual std::string Name() const = 0;
  /// Why this road cannot carry it; empty when it can.
  virtual std::string WhyNot(Need need) const = 0;
  /// Puts a notebook under whatever the process loads from now on.
  virtual void Place(const std::shared_ptr<simulator::Notebook>& notebook) = 0;
  /// Waits until what was plugged and unplugged is seen by the system above it.
  virtual void Settle() = 0;
  /// Takes it away again, after checking that nothing of it is still held.
  virtual void TakeAway() = 0;
};

/// The road of this program.
Road& TheRoad();

}  // namespace test
