/// Lets memory run out on demand, in the whole process: the test program's operator new counts and fails.
#pragma once

#include <cstdint>

namespace test {

/// Lets the n-th allocation from now on fail, counted from 1, and those behind it as well when `and_after`.
void ArmAllocationFaults(std::uint64_t n, bool and_after);
/// Ends it; how many allocations were made to fail.
std::uint64_t DisarmAllocationFaults();

/// What all allocations since the last arming asked for together, in bytes.
std::uint64_t BytesRequestedWhileArmed();

}  // namespace test
