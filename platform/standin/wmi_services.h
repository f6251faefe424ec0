/// A connection to the namespace "ROOT\WMI" of the machine in use.
#pragma once

#include "platform/standin/com_object.h"

namespace platform {

class WmiServices final : public ComObject<WmiServices, IWbemServices> {
 public:
  static constexpr IID kIid = {0x9556DC99, 0x828C, 0x11CF, {0xA3, 0x7E, 0x00, 0xAA, 0x00, 0x32, 0x40, 0xC7}};

  HRESULT GetObject(BSTR path, LONG flags, IWbemContext* context, IWbemClassObject** object,
                    IWbemCallResult** call_result) override;
  HRESULT CreateInstanceEnum(BSTR class_name, LONG flags, IWbemContext* context,
                             IEnumWbemClassObject** enumerator) override;
  HRESULT ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* context,
                    IEnumWbemClassObject** enumerator) override;
  HRESULT ExecMethod(BSTR path, BSTR method, LONG flags, IWbemContext* context, IWbemClassObject* in_params,
                     IWbemClassObject** out_params, IWbemCallResult** call_result) override;
};

}  // namespace platform
