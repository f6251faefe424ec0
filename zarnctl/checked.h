/// Turns the host library's errors into Complaints.
#pragma once

#include <string>
#include <utility>

#include "zarn_lighting/host.h"
#include "zarnctl/complaint.h"

namespace zarnctl {

inline Complaint ComplaintOf(const zarn::host::Error& error) {
  return {ExitCode::Failed, error.failure == zarn::host::Failure::OutOfMemory ? "memory ran out" : error.text};
}

template <typename Value>
Value Checked(zarn::host::Result<Value> result) {
  if (!result) throw ComplaintOf(result.error());
  return std::move(*result);
}

inline void Check(const zarn::host::Outcome& outcome) {
  if (outcome) throw ComplaintOf(*outcome);
}

}  // namespace zarnctl
