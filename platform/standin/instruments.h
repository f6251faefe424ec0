/// Instruments on the one point through which every platform call passes: a journal, a fault plan, and counts of
/// what is alive. For tests and for `zarnctl --trace`; a process that asks for none of them pays a relaxed atomic
/// read per call. All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace platform {

/// One finished platform call.
struct JournalEntry {
  /// The platform's own name, "RegOpenKeyExW" or "IWbemServices::ExecMethod".
  std::string call;
  /// What the call is about, the first of its arguments: a device's path for calls on its handle, an instance's path
  /// for ExecMethod, a key's name for calls on it.
  std::string subject;
  /// What tells this call from another one of that name: the arguments the caller chose, values in full
  /// (byte arrays in hexadecimal).
  std::string arguments;
  /// The result, and what was handed back where that is a value.
  std::string result;
  bool failed = false;
  /// Of a call that failed: the HRESULT or NTSTATUS that it answered, the registry's status, or the last error that it
  /// set. 0 for a call that has no code for its failure, as for one that did not fail.
  std::uint32_t code = 0;
};

using Journal = std::function<void(const JournalEntry&)>;

/// Calls `journal` after each platform call, on the calling thread, one at a time; an empty one ends it. It must not
/// make platform calls.
void SetJournal(Journal journal);

/// Lets platform calls fail in the way each fails for real. Calls that cannot fail (VariantInit, Release, Sleep, ...)
/// are not counted.
struct FaultPlan {
  enum class Reach {
    Once,      // the n-th call alone
    FromThere  // the n-th call and all that follow
  };
  enum class Kind {
    Failure,      // the call's own failure
    EmptySuccess  // where a call hands back an object: success, but no object; calls that hand back none are not
                  // counted
  };
  /// The first call that fails, counted from 1 over all threads.
  std::uint64_t first = 1;
  Reach reach = Reach::Once;
  Kind kind = Kind::Failure;
};

/// Arms `plan` and starts counting.
void ArmFaults(const FaultPlan& plan);
/// Ends it and answers how many calls were made to fail.
std::uint64_t DisarmFaults();

/// What platform calls handed out and nobody has given back yet.
struct LiveCounts {
  std::int64_t com_initializations = 0;  // counted by attempt, over all threads
  std::int64_t com_objects = 0;
  std::int64_t texts = 0;   // BSTRs
  std::int64_t arrays = 0;  // SAFEARRAYs
  std::int64_t registry_keys = 0;
  std::int64_t device_sets = 0;
  std::int64_t device_handles = 0;
  std::int64_t preparsed_data = 0;

  friend bool operator==(const LiveCounts&, const LiveCounts&) = default;
};

LiveCounts CountLive();

/// Misuse seen since the last call, in words: a key closed twice, COM uninitialised once too often.
std::vector<std::string> TakeComplaints();

}  // namespace platform
