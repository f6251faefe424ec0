/// Puts a simulated notebook under the platform layer, in this process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/standin/machine.h"
#include "simulator/notebook.h"

namespace simulator {

/// The machine that answers for `notebook`. The clock and pauses are the computer's own, and so are environment
/// variables that the profile does not set.
std::shared_ptr<platform::Machine> MakeMachine(std::shared_ptr<Notebook> notebook);

/// A connection to one of its HID keyboards, under the number that HidKeyboard::Connect gave it.
std::shared_ptr<platform::HidConnection> MakeConnection(std::shared_ptr<Notebook> notebook, std::size_t keyboard,
                                                        std::uint64_t connection);

}  // namespace simulator
