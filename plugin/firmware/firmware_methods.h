/// The four lighting methods of the embedded controller's firmware.
///
/// Each call opens a connection of its own, runs the method once and closes the connection. Nothing is cached or
/// retried. Answers 1 for success, after a pause of 30 ms that the firmware needs. Answers 0 for failure, at once, and
/// then has written nothing to the caller. May block for as long as the management service does. Throws nothing. Any
/// thread may call; calls on different threads are independent.
#pragma once

#include <cstdint>

/// Sends `length` bytes; `*output` receives the firmware's answer.
std::int32_t SetGamingLED(const std::uint8_t* input, std::uint32_t* output, std::int32_t length);

/// Sends 16 bytes; `*output` receives the firmware's 32-bit answer, widened as a signed number.
std::int32_t SetGamingKBBacklight(const std::uint8_t* input, std::uint64_t* output);

/// Sends one number.
std::int32_t SetGamingRgbKb(std::uint64_t value);

/// Fills `buffer` of `length` bytes, at least 1: the low byte of gmReturn, then the bytes of gmOutput. Behind a shorter
/// gmOutput the buffer stays as it was.
std::int32_t GetGamingLED(std::uint8_t* buffer, std::int32_t length);
