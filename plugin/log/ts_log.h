/// The diagnostics log: one text line per event, appended to one file per user and first day of logging.
///
/// The one object is created by the first GetInstance that finds logging switched on, and lives to the end of the
/// process. All functions may be called from any thread; lines of one process never interleave.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/system.h"

/// The folder of the log's files, below PROGRAMDATA. If that is not set it counts as empty; nothing when it is too
/// long.
std::optional<std::wstring> LogFolder();

class TsLog {
 public:
  enum Level : std::int32_t { Info = 0, Warning = 1, Error = 2, Exception = 3 };

  TsLog(const TsLog&) = delete;
  TsLog& operator=(const TsLog&) = delete;

  /// The process's log, or null while logging is off. Reads the registry's switch until there is a log.
  static TsLog* GetInstance();

  /// Appends one line, which is on disk on return. When the file cannot be opened, answers false and loses the line;
  /// the next one tries again. A character that cannot be converted ends its line early.
  bool WriteLine(std::int32_t level, const wchar_t* function_tag, const wchar_t* message);

 private:
  explicit TsLog(std::wstring path);
  ~TsLog() = default;  // never called

  static TsLog* Create();

  const std::wstring moduleName;
  const std::wstring filePath;
  CRITICAL_SECTION lock;
};
