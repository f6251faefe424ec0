/// show_binary_mof FILE: prints the classes and methods of a binary MOF, or says why it cannot be read.

#include <iostream>

#include "platform/linux/binary_mof.h"
#include "platform/linux/read_file.h"
#include "platform/standin/text.h"
#include "zarnctl/text.h"

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
    const std::string guid = each.guid.empty() ? "None" : platform::ReadableUtf8(each.guid);
    std::cout << zarnctl::Harmless("class " + platform::ReadableUtf8(each.name) + " guid " + guid) << "\n";
    for (const auto& method : each.methods) std::cout << zarnctl::Harmless("  " + Described(method)) << "\n";
  }
}
