/// The way to a connection with the management service of the machine in use.
#pragma once

#include "platform/standin/com_object.h"

namespace platform {

class WmiLocator final : public ComObject<WmiLocator, IWbemLocator> {
 public:
  static constexpr IID kIid = {0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

  HRESULT ConnectServer(BSTR network_resource, BSTR user, BSTR password, BSTR locale, LONG security_flags,
                        BSTR authority, IWbemContext* context, IWbemServices** services) override;
};

}  // namespace platform
