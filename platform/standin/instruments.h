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
template <typename Count>
struct LiveCountsOf {
  Count com_initializations{};  // counted by attempt, over all threads
  Count com_objects{};
  Count texts{};   // BSTRs
  Count arrays{};  // SAFEARRAYs
  Count registry_keys{};
  Count device_sets{};
  Count device_handles{};
  Count preparsed_data{};

  friend bool operator==(const LiveCountsOf&, const LiveCountsOf&) = default;
};
using LiveCounts = LiveCountsOf<std::int64_t>;

LiveCounts CountLive();

/// Misuse seen since the last call, in words: a key closed twice, COM uninitialised once too often.
std::vector<std::string> TakeComplaints();

}  // namespace platform
