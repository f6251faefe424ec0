#include "ec/zarn_ec_global_controller.h"

#include "ec/effect_packet.h"
#include "firmware/firmware_methods.h"
#include "firmware/smbios.h"

ZarnECGlobalController::ZarnECGlobalController() {
  RawSmbiosTable table;
  stSMBiosType172 record;
  ReadRawSmbiosTable(table);
  if (!FindSMBiosType172(table, record)) return;
  has_lightbar = FirstItem(record, kItemLightBar) == kLightBarThere ? 1 : 0;
}

void ZarnECGlobalController::SetMode(std::uint8_t effect, std::uint16_t speed, std::uint16_t direction,
                                     std::uint16_t brightness, std::uint8_t red, std::uint8_t green,
                                     std::uint8_t blue) const {
  const EffectSettings settings{effect, speed, direction, brightness, red, green, blue};
  const std::uint8_t target = has_lightbar != 0 ? kTargetKeyboardAndLightBar : kTargetKeyboard;
  const EffectPacket packet = MakeLoggedEffectPacket(L"ZarnECGlobalController::SetMode", settings, target);
  std::uint64_t output = 0;
  SetGamingKBBacklight(packet.data(), &output);
}
