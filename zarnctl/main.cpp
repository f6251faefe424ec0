#include "zarnctl/command_line.h"
#include "zarnctl/terminal.h"

int main(int argc, char** argv) {
  const zarnctl::Utf8Terminal terminal;
  return static_cast<int>(zarnctl::Run(zarnctl::TypedWords(argc, argv)));
}
