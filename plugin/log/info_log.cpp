#include "log/info_log.h"

#include <array>
#include <cstdarg>
#include <exception>

#include "log/format.h"
#include "log/ts_log.h"

void InfoLog::operator()(const wchar_t* format, ...) const try {
  TsLog* const log = TsLog::GetInstance();
  if (log == nullptr) return;
  std::array<wchar_t, 1000> message{};
  std::va_list arguments;
  va_start(arguments, format);
  FormatWide(message.data(), message.size(), format, arguments);
  va_end(arguments);
  log->WriteLine(TsLog::Info, function_tag_, message.data());
} catch (const std::exception&) {
}
