/// Bytes spelled as hexadecimal text, padded, or in a block of their exact size.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace test {

inline std::vector<std::uint8_t> Hex(const std::string& text) {
  std::vector<std::uint8_t> bytes;
  std::istringstream words(text);
  for (std::string word; words >> word;) bytes.push_back(static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
  return bytes;
}

inline std::vector<std::uint8_t> Padded(std::vector<std::uint8_t> bytes, std::size_t length) {
  bytes.resize(length);
  return bytes;
}

/// A heap block of exactly these bytes. A sanitizer sees a read beyond them.
class ExactBlock {
 public:
  explicit ExactBlock(std::span<const std::uint8_t> bytes)
      : bytes_(std::make_unique<std::uint8_t[]>(bytes.size())), size_(bytes.size()) {
    std::copy(bytes.begin(), bytes.end(), bytes_.get());
  }
  std::span<const std::uint8_t> view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<std::uint8_t[]> bytes_;
  std::size_t size_;
};

}  // namespace test
