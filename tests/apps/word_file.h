// Binary files of 4-byte words written by hand.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "database/bytes.h"
#include "support/temp_folder.h"

namespace zentor::test {

class WordFile {
 public:
  explicit WordFile(std::size_t words = 0) : words_(words) {}

  WordFile& Ints(std::initializer_list<std::int32_t> values) {
    words_.insert(words_.end(), values);
    return *this;
  }
  WordFile& Reals(std::initializer_list<float> values) {
    for (const float value : values) words_.push_back(std::bit_cast<std::int32_t>(value));
    return *this;
  }
  // Ten words, the last of them 0.
  WordFile& Record(std::initializer_list<std::int32_t> ints, std::initializer_list<float> reals = {}) {
    return Ints(ints).Reals(reals).Resize((words_.size() + 9) / 10 * 10);
  }
  WordFile& Set(std::size_t word, std::int32_t value) {
    words_.at(word) = value;
    return *this;
  }
  WordFile& SetReal(std::size_t word, float value) { return Set(word, std::bit_cast<std::int32_t>(value)); }
  WordFile& Resize(std::size_t words) {
    words_.resize(words);
    return *this;
  }
  std::size_t size() const { return words_.size(); }
  std::vector<std::byte> Bytes() const {
    std::vector<std::byte> bytes(words_.size() * 4);
    for (std::size_t i = 0; i < words_.size(); ++i) StoreInt(bytes.data() + 4 * i, words_[i]);
    return bytes;
  }
  void Write(const std::string& path) const { WriteBytes(path, Bytes()); }

 private:
  std::vector<std::int32_t> words_;
};

}  // namespace zentor::test
