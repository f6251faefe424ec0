#include "hid/hid_log.h"

#include <array>
#include <cstdarg>
#include <exception>

#include "log/format.h"
#include "platform/system.h"

void HidLog::Write(zarn::WRV520::Logger::Level level, const wchar_t* format, ...) const {
  const DWORD error = GetLastError();
  std::va_list arguments;
  va_start(arguments, format);
  try {
    std::array<wchar_t, 1000> message{};
    FormatWide(message.data(), message.size(), format, arguments);
    zarn::WRV520::CurrentLogger()->Log(level, function_tag_, message.data());
  } catch (const std::exception&) {
  }
  va_end(arguments);
  SetLastError(error);
}
