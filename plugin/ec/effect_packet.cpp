#include "ec/effect_packet.h"

#include <cstddef>

#include "firmware/firmware_methods.h"
#include "log/info_log.h"

std::int32_t SendEffect(const wchar_t* function_tag, const EffectSettings& settings, std::uint8_t target) {
  const InfoLog log(function_tag);
  log(L"Enter!!");
  log(L"mode=%d, speed=%d, direction=%d, brightness=%d, color= (0X%X,0X%X,0X%X)", settings.effect, settings.speed,
      settings.direction, settings.brightness, settings.red, settings.green, settings.blue);
  const EffectPacket packet = MakeEffectPacket(settings, target);
  for (std::size_t i = 0; i < packet.size(); ++i) log(L"input_data[%d] = 0X%X", static_cast<int>(i), packet[i]);
  std::uint64_t output = 0;
  return SetGamingKBBacklight(packet.data(), &output);
}
