#include "ec/zarn_ec_global_controller.h"

#include "ec/effect_packet.h"
#include "firmware/smbios.h"

ZarnECGlobalController::ZarnECGlobalController() {
  stSMBiosType172 record;
  if (ReadSMBiosType172(record) && FirstItem(record, kItemLightBar) == kLightBarThere) has_lightbar = 1;
}

void ZarnECGlobalController::SetMode(std::uint8_t effect, std::uint16_t speed, std::uint16_t direction,
                                     std::uint16_t brightness, std::uint8_t red, std::uint8_t green,
                                     std::uint8_t blue) const {
  SendEffect(L"ZarnECGlobalController::SetMode", {effect, speed, direction, brightness, red, green, blue},
             has_lightbar != 0 ? kTargetKeyboardAndLightBar : kTargetKeyboard);
}
