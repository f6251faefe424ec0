#include <memory>

#include "platform/standin/text.h"
#include "platform/windows.h"
#include "zarnctl/command_line.h"

// After the platform's main header.
#include <shellapi.h>

int main() {
  // The platform has the words in UTF-16. What main gets is in the language's code page, which lacks characters.
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> typed(CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
  std::vector<std::string> words;
  for (int i = 1; typed && i < count; ++i) words.push_back(platform::ReadableUtf8(typed.get()[i]));
  const UINT code_page_before = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  const zarnctl::ExitCode code = zarnctl::Run(std::move(words));
  SetConsoleOutputCP(code_page_before);
  return static_cast<int>(code);
}
