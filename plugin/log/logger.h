/// The logger of the HID library code, which knows nothing of the log file: an interface, a default that prints to
/// the console, and an adapter to the file log that discovery installs.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

class TsLog;

namespace zarn::WRV520 {

/// With compilers of the Itanium ABI the destructor takes virtual table entries 0 and 1, and Log is entry 2. May be
/// called from any thread.
class Logger {
 public:
  enum Level : std::int32_t { Info = 0, Warning = 1, Error = 2, Exception = 3 };

  virtual ~Logger() = default;
  virtual void Log(Level level, const std::wstring& function_tag, const std::wstring& message) = 0;
};

/// Forwards to the file log, which it does not own; drops every line when there is none.
class TsLogAdapter final : public Logger {
 public:
  explicit TsLogAdapter(TsLog* file_log) : log(file_log) {}
  void Log(Level level, const std::wstring& function_tag, const std::wstring& message) override;

 private:
  TsLog* const log;
};

/// Prints the messages alone to std::wcout, a line each.
class DefaultLogger final : public Logger {
 public:
  void Log(Level level, const std::wstring& function_tag, const std::wstring& message) override;
};

/// A DefaultLogger at first. Replace it by ReplaceLogger, and log through CurrentLogger: the reference keeps the logger
/// alive while it is in use.
extern std::shared_ptr<Logger> g_logger;

std::shared_ptr<Logger> CurrentLogger();
void ReplaceLogger(std::shared_ptr<Logger> logger);

}  // namespace zarn::WRV520
