/// Puts a simulated notebook under the platform layer, in this process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/standin/machine.h"
#include "simulator/notebook.h"

namespace simulator {

/// A machine that is `notebook`, with the computer's clock, and its environment variables where the profile sets none.
std::shared_ptr<platform::Machine> MakeMachine(std::shared_ptr<Notebook> notebook);

/// A connection to one of the notebook's HID keyboards. `connection` comes from HidKeyboard::Connect.
std::shared_ptr<platform::HidConnection> MakeConnection(std::shared_ptr<Notebook> notebook, std::size_t keyboard,
                                                        std::uint64_t connection);

}  // namespace simulator
