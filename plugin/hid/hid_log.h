/// How the HID library code logs: through the process's logger, under one function tag.
#pragma once

#include "log/logger.h"

/// One operation's view of the logger. `format` as for FormatWide, cut at 1000 characters; a line for which there is no
/// memory is lost. Logging keeps the thread's last error: code after a failed platform call may still ask for it.
class HidLog {
 public:
  explicit HidLog(const wchar_t* function_tag) : function_tag_(function_tag) {}

  template <typename... Arguments>
  void Info(const wchar_t* format, Arguments... arguments) const {
    Write(zarn::WRV520::Logger::Info, format, arguments...);
  }
  template <typename... Arguments>
  void Error(const wchar_t* format, Arguments... arguments) const {
    Write(zarn::WRV520::Logger::Error, format, arguments...);
  }

 private:
  void Write(zarn::WRV520::Logger::Level level, const wchar_t* format, ...) const;

  const wchar_t* function_tag_;
};
