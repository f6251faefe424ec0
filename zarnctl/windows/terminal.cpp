#include "zarnctl/terminal.h"

#include <memory>

#include "platform/standin/text.h"
#include "platform/windows.h"

// After the platform's main header.
#include <shellapi.h>

namespace zarnctl {

// What main is given is in the code page of the system's language, which has not all characters.
std::vector<std::string> TypedWords(int /*argc*/, const char* const* /*argv*/) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> typed(CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
  std::vector<std::string> words;
  for (int i = 1; typed && i < count; ++i) words.push_back(platform::ReadableUtf8(typed.get()[i]));
  return words;
}

Utf8Terminal::Utf8Terminal() : code_page_before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }

Utf8Terminal::~Utf8Terminal() { SetConsoleOutputCP(code_page_before_); }

// There are no lights to draw here.
bool StdoutShowsColors() { return false; }

LiveDrawing::LiveDrawing() = default;

LiveDrawing::~LiveDrawing() = default;

void LiveDrawing::Show(const std::string& /*text*/) {}

}  // namespace zarnctl
