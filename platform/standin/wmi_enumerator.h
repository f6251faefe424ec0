/// The instances that were there when the enumeration began.
#pragma once

#include <mutex>
#include <vector>

#include "platform/standin/com_object.h"
#include "platform/standin/machine.h"

namespace platform {

class WmiEnumerator final : public ComObject<WmiEnumerator, IEnumWbemClassObject> {
 public:
  static constexpr IID kIid = {0x027947E1, 0xD731, 0x11CE, {0xA3, 0x57, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};

  explicit WmiEnumerator(std::vector<NamedValues> instances);

  HRESULT Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) override;

 private:
  HRESULT Take(ULONG count, IWbemClassObject** objects, ULONG& returned);

  const std::vector<NamedValues> instances_;
  std::mutex mutex_;
  std::size_t next_ = 0;  // guarded by mutex_
};

}  // namespace platform
