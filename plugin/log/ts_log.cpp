#include "log/ts_log.h"

#include <array>
#include <atomic>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <locale>
#include <mutex>
#include <optional>
#include <utility>

#include "base/owner.h"
#include "log/format.h"
#include "log/service_switch.h"

namespace {

constexpr wchar_t kModuleName[] = L"ZarnECKeyboard";

using PathBuffer = std::array<wchar_t, MAX_PATH>;

std::wstring LogPath(const std::wstring& folder) {
  SYSTEMTIME today{};
  GetLocalTime(&today);
  PathBuffer user{};
  auto size = static_cast<DWORD>(user.size());
  if (GetUserNameW(user.data(), &size) == 0) user.front() = L'\0';
  return folder + L"\\" + user.data() + L"_" + kModuleName + L"_" +
         Formatted(L"%4d%02d%02d", today.wYear, today.wMonth, today.wDay) + L".log";
}

std::wstring Timestamp() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return Formatted(L"%04d%02d%02d_%02d:%02d:%02d.%03d", now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                   now.wSecond, now.wMilliseconds);
}

const wchar_t* TagOf(std::int32_t level) {
  static constexpr const wchar_t* kTags[] = {L"[INFO]     ", L"[WARNING]  ", L"[ERROR]    ", L"[EXCEPTION]"};
  return level >= 0 && level < static_cast<std::int32_t>(std::size(kTags)) ? kTags[level] : L"";
}

/// How many characters of `text` stand before the first one that a stream of `locale` cannot convert. That one, if
/// written, would also lose what waits in the stream's buffer.
std::size_t ConvertibleLength(const std::wstring& text, const std::locale& locale) {
  using Converter = std::codecvt<wchar_t, char, std::mbstate_t>;
  const auto& converter = std::use_facet<Converter>(locale);
  std::mbstate_t state{};
  std::array<char, 16> narrow{};
  for (std::size_t i = 0; i < text.size(); ++i) {
    const wchar_t* wide_end = nullptr;
    char* narrow_end = nullptr;
    const auto result = converter.out(state, &text[i], &text[i] + 1, wide_end, narrow.data(),
                                      narrow.data() + narrow.size(), narrow_end);
    if (result != Converter::ok) return i;
  }
  return text.size();
}

}  // namespace

std::optional<std::wstring> LogFolder() {
  PathBuffer program_data{};
  const auto room = static_cast<DWORD>(program_data.size());
  const DWORD length = GetEnvironmentVariableW(L"PROGRAMDATA", program_data.data(), room);
  if (length >= room) return std::nullopt;
  return std::wstring(program_data.data(), length) + L"\\OEM\\ZarnLightingService\\Log";
}

TsLog::TsLog(std::wstring path) : moduleName(kModuleName), filePath(std::move(path)) {
  InitializeCriticalSection(&lock);
}

TsLog* TsLog::GetInstance() {
  static std::atomic<TsLog*> instance = nullptr;
  static std::mutex creation_lock;

  if (TsLog* const log = instance.load(std::memory_order_acquire)) return log;
  if (!IsOn(kLogSwitch)) return nullptr;
  const std::lock_guard lock(creation_lock);
  if (instance == nullptr) instance = Create();
  return instance;
}

TsLog* TsLog::Create() {
  const std::optional<std::wstring> folder = LogFolder();
  if (!folder) return nullptr;
  std::wstring path = LogPath(*folder);
  if (path.size() >= MAX_PATH) return nullptr;  // no log rather than one at a cut path
  std::array<char, MAX_PATH> narrow_path{};
  if (WideCharToMultiByte(CP_ACP, 0, path.c_str(), -1, narrow_path.data(), static_cast<int>(narrow_path.size()),
                          nullptr, nullptr) == 0) {
    return nullptr;
  }
  MakeSureDirectoryPathExists(narrow_path.data());
  return new TsLog(std::move(path));
}

bool TsLog::WriteLine(std::int32_t level, const wchar_t* function_tag, const wchar_t* message) {
  std::wstring line =
      TagOf(level) + (L" " + Timestamp()) + L" | " + moduleName + L" | " + function_tag + L" | " + message;

  EnterCriticalSection(&lock);
  const Owner<CRITICAL_SECTION*, LeaveCriticalSection> leaves(&lock);
  std::wofstream file;
  platform::OpenToAppend(file, filePath.c_str());
  if (!file.is_open()) return false;
  line.resize(ConvertibleLength(line, file.getloc()));
  file << line << L"\r\n";
  file.close();
  return true;
}
