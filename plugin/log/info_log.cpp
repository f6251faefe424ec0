#include "log/info_log.h"

#include <array>
#include <cstdarg>
#include <exception>

#include "log/format.h"
#include "log/ts_log.h"

void InfoLog::operator()(const wchar_t* format, ...) const {
  std::va_list arguments;
  va_start(arguments, format);
  try {
    if (TsLog* const log = TsLog::GetInstance()) {
      std::array<wchar_t, 1000> message{};
      FormatWide(message.data(), message.size(), format, arguments);
      log->WriteLine(TsLog::Info, function_tag_, message.data());
    }
  } catch (const std::exception&) {
  }
  va_end(arguments);
}
