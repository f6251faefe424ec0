/// show_binary_mof FILE: prints the classes and methods of a binary MOF, or says why it cannot be read.

#include <iostream>

#include "platform/linux/binary_mof.h"
#include "platform/linux/read_file.h"
#include "platform/standin/text.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: show_binary_mof FILE\n";
    return 2;
  }
  const auto bytes = platform::ReadFile(argv[1]);
  if (!bytes) {
    std::cerr << argv[1] << ": cannot be read\n";
    return 1;
  }
  const platform::BinaryMof mof = platform::ReadBinaryMof(*bytes);
  if (!mof.refusal.empty()) {
    std::cerr << argv[1] << ": " << mof.refusal << "\n";
    return 1;
  }
  for (const platform::MofClass& each : mof.classes) {
    std::cout << "class " << platform::ReadableUtf8(each.name) << " guid " << platform::ReadableUtf8(each.guid) << "\n";
    for (const platform::MofMethod& method : each.methods) std::cout << "  " << Described(method) << "\n";
  }
}
