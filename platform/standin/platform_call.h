/// The one point through which every platform call passes, on its way from a public function to the machine.
///
/// Pass serves the journal and the fault plan, and keeps the calling thread's last error. It lets nothing escape: a
/// body that throws makes the call fail, with the call's own failure for std::bad_alloc.
///
/// The public functions have C linkage, so those defined in this namespace are the ones declared outside of it.
#pragma once

#include <atomic>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/standin/instruments.h"
#include "platform/standin/journal_text.h"
#include "platform/standin/system_api.h"

namespace platform {

inline constexpr unsigned kJournalArmed = 1;
inline constexpr unsigned kFaultsArmed = 2;
/// Which instruments are armed. While none is, a call reads nothing else.
extern std::atomic<unsigned> g_instruments;

/// What CountLive answers from.
extern LiveCountsOf<std::atomic<std::int64_t>> g_live;

/// Notes a misuse of the layer by its caller. A complaint for which there is no memory is lost.
void Complain(std::string_view what) noexcept;

enum class Fault { None, Failure, EmptySuccess };

/// Counts a fallible call towards the fault plan and answers what is to become of it.
Fault NextFault(bool hands_back_object) noexcept;
void Deliver(const JournalEntry& entry);

/// The calling thread's last error.
LONG ThreadError() noexcept;
void SetThreadError(LONG error) noexcept;

/// For bodies of calls that answer 0 or FALSE when they fail.
inline BOOLEAN FailWith(LONG error) noexcept {
  SetThreadError(error);
  return FALSE;
}

/// What a call that answers nothing passes back.
struct Nothing {};

/// How a call's answer tells a failure and its code.
enum class FailsBy {
  Nothing,  // it cannot fail
  Result,   // an HRESULT or NTSTATUS below 0, the code itself
  Status,   // any status but ERROR_SUCCESS, the code itself
  Answer    // Call::failure; the code is the last error, where the call sets one
};

/// What the one point must know about a platform call. Answer{} is what an empty success answers.
template <typename Answer>
struct Call {
  const char* name = nullptr;
  Answer failure = {};
  Answer out_of_memory = {};
  FailsBy fails_by = FailsBy::Answer;
  /// The last error that a failure sets; ERROR_SUCCESS where a call keeps none.
  LONG last_error = ERROR_SUCCESS;
  bool fallible = true;
  bool hands_back_object = false;
};

/// A call that answers an HRESULT or an NTSTATUS.
constexpr Call<HRESULT> ComCall(const char* name, HRESULT failure = E_FAIL, HRESULT out_of_memory = E_OUTOFMEMORY) {
  return {.name = name, .failure = failure, .out_of_memory = out_of_memory, .fails_by = FailsBy::Result};
}

/// A call that answers a status, ERROR_SUCCESS or what went wrong.
constexpr Call<LONG> StatusCall(const char* name, LONG failure) {
  return {.name = name, .failure = failure, .out_of_memory = ERROR_NOT_ENOUGH_MEMORY, .fails_by = FailsBy::Status};
}

/// A call that answers 0, FALSE or null when it fails, or another `failure`.
template <typename Answer>
constexpr Call<Answer> ZeroCall(const char* name, LONG last_error = ERROR_SUCCESS, Answer failure = {}) {
  return {.name = name, .failure = failure, .out_of_memory = failure, .last_error = last_error};
}

/// A call that cannot fail.
template <typename Answer = Nothing>
constexpr Call<Answer> SureCall(const char* name) {
  return {.name = name, .failure = {}, .out_of_memory = {}, .fails_by = FailsBy::Nothing, .fallible = false};
}

/// The same call, but the fault plan passes over it: it fails by misuse alone.
template <typename Answer>
constexpr Call<Answer> Sure(Call<Answer> call) {
  call.fallible = false;
  return call;
}

/// The same call, which hands back an object.
template <typename Answer>
constexpr Call<Answer> WithObject(Call<Answer> call) {
  call.hands_back_object = true;
  return call;
}

template <typename Answer>
Answer Fail(const Call<Answer>& call, Answer answer, LONG error) noexcept {
  if (call.last_error != ERROR_SUCCESS) SetThreadError(error);
  return answer;
}

template <typename Answer, typename Body>
Answer Attempt(const Call<Answer>& call, const Body& body, bool faults_armed) noexcept {
  const Fault fault = faults_armed && call.fallible ? NextFault(call.hands_back_object) : Fault::None;
  if (fault == Fault::EmptySuccess) return Answer{};
  if (fault == Fault::Failure) return Fail(call, call.failure, call.last_error);
  try {
    if constexpr (std::is_same_v<Answer, Nothing>) {
      body();
      return Nothing{};
    } else {
      return body();
    }
  } catch (const std::bad_alloc&) {
    return Fail(call, call.out_of_memory, ERROR_NOT_ENOUGH_MEMORY);
  } catch (...) {
    return Fail(call, call.failure, call.last_error);
  }
}

/// The arguments of a call for its journal entry, read only if there is one.
template <typename... Values>
auto Asked(const Values&... values) {
  return [&] { return std::vector<std::string>{Described(values)...}; };
}

/// An answer as the journal has it.
template <typename Answer>
std::string AnswerText(const Call<Answer>& call, Answer answer) {
  if constexpr (std::is_pointer_v<Answer>) {
    return answer != call.failure ? "done" : answer == nullptr ? "null" : "invalid";
  } else if constexpr (std::is_same_v<Answer, Nothing>) {
    return {};
  } else {
    return call.fails_by == FailsBy::Result ? CodeText(static_cast<HRESULT>(answer)) : std::to_string(answer);
  }
}

/// Some answers are failures or not, such as a length of 0 (an empty variable): then the last error decides.
template <typename Answer>
bool HasFailed(const Call<Answer>& call, Answer answer) {
  if constexpr (std::is_integral_v<Answer>) {
    if (call.fails_by == FailsBy::Result) return FAILED(static_cast<HRESULT>(answer));
    if (call.fails_by == FailsBy::Status) return answer != ERROR_SUCCESS;
  }
  if constexpr (!std::is_same_v<Answer, Nothing>) {
    const bool says_otherwise = call.last_error != ERROR_SUCCESS && ThreadError() == ERROR_SUCCESS;
    return call.fails_by == FailsBy::Answer && answer == call.failure && !says_otherwise;
  }
  return false;
}

/// The code of a failure; see JournalEntry.
template <typename Answer>
std::uint32_t CodeOf(const Call<Answer>& call, Answer answer) {
  if constexpr (std::is_integral_v<Answer>) {
    if (call.fails_by != FailsBy::Answer) return static_cast<std::uint32_t>(answer);
  }
  return call.last_error != ERROR_SUCCESS ? static_cast<std::uint32_t>(ThreadError()) : 0;
}

/// Makes the call `body` does. The journal gets `arguments()`, taken before the body runs, and what
/// `handed_back(answer)` tells beside the answer; neither is called while nobody listens.
template <typename Answer, typename Arguments, typename Body, typename HandedBack>
Answer Pass(const Call<Answer>& call, const Arguments& arguments, const Body& body,
            const HandedBack& handed_back) noexcept {
  const unsigned armed = g_instruments.load(std::memory_order_relaxed);
  if ((armed & kJournalArmed) == 0) return Attempt(call, body, (armed & kFaultsArmed) != 0);

  JournalEntry entry;
  try {
    const std::vector<std::string> asked = arguments();
    entry.call = call.name;
    entry.arguments = Listed(asked);
    if (!asked.empty()) entry.subject = asked.front();
  } catch (...) {
    // What there is no memory for stays empty; the call is made all the same.
  }
  const Answer answer = Attempt(call, body, (armed & kFaultsArmed) != 0);
  try {
    entry.failed = HasFailed(call, answer);
    entry.code = entry.failed ? CodeOf(call, answer) : 0;
    const bool set_error = entry.failed && call.last_error != ERROR_SUCCESS;
    const std::string error = set_error ? ", error " + std::to_string(entry.code) : "";
    entry.result = Listed({AnswerText(call, answer) + error, handed_back(answer)});
    Deliver(entry);
  } catch (...) {
    // An entry that cannot be composed, or that its listener will not have, is lost; the call has been made.
  }
  return answer;
}

template <typename Answer, typename Arguments, typename Body>
Answer Pass(const Call<Answer>& call, const Arguments& arguments, const Body& body) noexcept {
  return Pass(call, arguments, body, [](const Answer&) { return std::string(); });
}

/// Empties the place for what a call hands back, so that no failure leaves anything in it.
template <typename Object>
void Empty(Object** place) noexcept {
  if (place != nullptr) *place = nullptr;
}

}  // namespace platform
