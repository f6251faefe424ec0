#include "hid/hid_log.h"

#include <array>
#include <cstdarg>
#include <exception>

#include "log/format.h"
#include "log/logger.h"
#include "platform/system.h"

using zarn::WRV520::Logger;

namespace {

void Write(Logger::Level level, const wchar_t* function_tag, const wchar_t* format, std::va_list arguments) {
  const DWORD error = GetLastError();
  try {
    std::array<wchar_t, 1000> message{};
    FormatWide(message.data(), message.size(), format, arguments);
    zarn::WRV520::CurrentLogger()->Log(level, function_tag, message.data());
  } catch (const std::exception&) {
  }
  SetLastError(error);
}

}  // namespace

void HidLog::Info(const wchar_t* format, ...) const {
  std::va_list arguments;
  va_start(arguments, format);
  Write(Logger::Info, function_tag_, format, arguments);
  va_end(arguments);
}

void HidLog::Error(const wchar_t* format, ...) const {
  std::va_list arguments;
  va_start(arguments, format);
  Write(Logger::Error, function_tag_, format, arguments);
  va_end(arguments);
}
