/// Fails every platform call and every allocation of an operation in turn.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <ostream>

#include "platform/standin/instruments.h"
#include "tests/support/allocation_faults.h"

namespace test {

/// The n-th call or allocation fails, alone or with all that follow.
struct Fault {
  enum class Source {
    PlatformCall,
    EmptyResult,  // a platform call that hands out an object succeeds without one
    Memory
  };
  Source source;
  bool for_ever;
  std::uint64_t n;

  friend std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    static constexpr const char* kNames[] = {"platform call", "empty result", "allocation"};
    return out << kNames[static_cast<int>(fault.source)] << " " << fault.n << (fault.for_ever ? " and after" : "");
  }
};

/// How a run ended. `met`: the operation got as far as the fault. `threw_bad_alloc`: std::bad_alloc left it.
struct FaultRun {
  Fault fault;
  bool met;
  bool threw_bad_alloc;
};

inline void Arm(const Fault& fault) {
  if (fault.source == Fault::Source::Memory) return ArmAllocationFaults(fault.n, fault.for_ever);
  using Plan = platform::FaultPlan;
  platform::ArmFaults({fault.n, fault.for_ever ? Plan::Reach::FromThere : Plan::Reach::Once,
                       fault.source == Fault::Source::EmptyResult ? Plan::Kind::EmptySuccess : Plan::Kind::Failure});
}

/// Runs `operation` with the first, second, ... fault of every kind until a run meets none. Only std::bad_alloc may
/// leave it. After each run `check` gets the outcome, and nothing of the platform's may be alive.
template <typename Operation, typename Check>
void FailInTurn(Operation operation, Check check) {
  for (const auto source : {Fault::Source::PlatformCall, Fault::Source::EmptyResult, Fault::Source::Memory}) {
    for (const bool for_ever : {false, true}) {
      FaultRun run{{source, for_ever, 0}, true, false};
      while (run.met) {
        ++run.fault.n;
        run.threw_bad_alloc = false;
        Arm(run.fault);
        try {
          operation();
        } catch (const std::bad_alloc&) {
          run.threw_bad_alloc = true;
        }
        run.met = platform::DisarmFaults() + DisarmAllocationFaults() > 0;

        SCOPED_TRACE(::testing::Message() << "with fault: " << run.fault);
        EXPECT_TRUE(run.met || !run.threw_bad_alloc);
        check(run);
        EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
        EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
        if (::testing::Test::HasFailure()) return;  // the first fault that shows it is enough
      }
    }
  }
}

}  // namespace test
