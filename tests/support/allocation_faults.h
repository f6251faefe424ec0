/// Lets memory run out on demand, in the whole process, through the test program's own operator new.
#pragma once

#include <cstdint>

namespace test {

/// The n-th allocation from now on fails, counted from 1. With `and_after` all later ones fail, too.
void ArmAllocationFaults(std::uint64_t n, bool and_after);
/// Ends that. Returns how many allocations failed.
std::uint64_t DisarmAllocationFaults();

/// The bytes that all allocations since the last arming asked for.
std::uint64_t BytesRequestedWhileArmed();

}  // namespace test
