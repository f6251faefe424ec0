/// The parameters of firmware methods as the bytes that cross to the firmware and back.
///
/// One value follows another, each aligned to its own size, the lowest byte first. Pure functions; any thread.
#pragma once

#include <optional>
#include <span>

#include "platform/linux/binary_mof.h"
#include "platform/standin/machine.h"

namespace platform {

/// The bytes of all in-parameters. A number may come as one or as decimal text, and gets the declared type. A byte
/// array goes as it is, also where another length is declared: the host knows best how long its packets must be.
/// Nothing when a parameter is missing, unknown, of a type that nobody here sends, or does not fit its type.
std::optional<Bytes> PackInput(const MofMethod& method, const NamedValues& in);

/// The out-parameters in `answer`, as the management service hands them out: numbers of 64 bits as text, unsigned
/// ones of 8 bits as VT_UI1, others as VT_I4. A short answer shortens an array. It leaves out a number that is
/// incomplete, and all that stands behind that.
NamedValues UnpackOutput(const MofMethod& method, std::span<const std::uint8_t> answer);

}  // namespace platform
