#include "platform/standin/wmi_enumerator.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/standin/wmi_class_object.h"

namespace platform {
namespace {

constexpr Call<HRESULT> kNext =
    ObjectCall("IEnumWbemClassObject::Next", Status(WBEM_E_FAILED), Status(WBEM_E_OUT_OF_MEMORY));

}  // namespace

WmiEnumerator::WmiEnumerator(std::vector<NamedValues> instances) : instances_(std::move(instances)) {}

HRESULT WmiEnumerator::Take(ULONG count, IWbemClassObject** objects, ULONG& returned) {
  const std::lock_guard lock(mutex_);
  const std::size_t taken = std::min<std::size_t>(count, instances_.size() - next_);
  // All are made before the first is handed out: a call that fails half-way hands out none.
  std::vector<std::unique_ptr<WmiClassObject>> made;
  for (std::size_t i = 0; i < taken; ++i) made.push_back(std::make_unique<WmiClassObject>(instances_[next_ + i]));
  for (std::size_t i = 0; i < taken; ++i) objects[i] = made[i].release();
  next_ += taken;
  returned = static_cast<ULONG>(taken);
  return taken == count ? Status(WBEM_S_NO_ERROR) : Status(WBEM_S_FALSE);
}

HRESULT WmiEnumerator::Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) {
  if (returned != nullptr) *returned = 0;
  return Pass(
      kNext, Asked(timeout, count),
      [&] {
        return objects != nullptr && returned != nullptr ? Take(count, objects, *returned)
                                                         : Status(WBEM_E_INVALID_PARAMETER);
      },
      [&](HRESULT) { return returned != nullptr ? Described(*returned) : ""; });
}

}  // namespace platform
