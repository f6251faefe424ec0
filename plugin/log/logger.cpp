#include "log/logger.h"

#include <iostream>
#include <mutex>

#include "log/ts_log.h"

namespace zarn::WRV520 {

namespace {

std::mutex g_loggerLock;

TsLog::Level FileLevel(Logger::Level level) {
  return level >= Logger::Info && level <= Logger::Exception ? static_cast<TsLog::Level>(level) : TsLog::Info;
}

}  // namespace

std::shared_ptr<Logger> g_logger = std::make_shared<DefaultLogger>();

std::shared_ptr<Logger> CurrentLogger() {
  const std::lock_guard lock(g_loggerLock);
  return g_logger;
}

void ReplaceLogger(std::shared_ptr<Logger> logger) {
  // Swapped, so that the previous logger is destroyed with the argument, after the lock.
  const std::lock_guard lock(g_loggerLock);
  g_logger.swap(logger);
}

void TsLogAdapter::Log(Level level, const std::wstring& function_tag, const std::wstring& message) {
  if (log != nullptr) log->WriteLine(FileLevel(level), function_tag.c_str(), message.c_str());
}

void DefaultLogger::Log(Level /*level*/, const std::wstring& /*function_tag*/, const std::wstring& message) {
  // A character that the console cannot show must silence neither the end of its line nor the lines to come.
  std::wcout << message;
  std::wcout.clear();
  std::wcout << std::endl;
  std::wcout.clear();
}

}  // namespace zarn::WRV520
