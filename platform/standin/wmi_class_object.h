/// Instances, class definitions and the parameters of methods: named values.
#pragma once

#include <mutex>
#include <vector>

#include "platform/standin/com_object.h"
#include "platform/standin/machine.h"

namespace platform {

class WmiClassObject final : public ComObject<WmiClassObject, IWbemClassObject> {
 public:
  static constexpr IID kIid = {0xDC12A681, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

  explicit WmiClassObject(NamedValues values, std::vector<FirmwareClass::Method> methods = {});

  HRESULT Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) override;
  HRESULT Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
  HRESULT GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in_signature,
                    IWbemClassObject** out_signature) override;

  /// A copy of all that is in it.
  NamedValues Values() const;

 private:
  HRESULT Read(LPCWSTR name, VARIANT& value) const;
  HRESULT Store(LPCWSTR name, const VARIANT& value);

  const std::vector<FirmwareClass::Method> methods_;
  mutable std::mutex mutex_;
  NamedValues values_;  // guarded by mutex_
};

}  // namespace platform
