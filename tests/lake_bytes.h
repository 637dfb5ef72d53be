// Lakes from bytes and bytes from lakes, through a file as hosts do it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "interfaces/text/Text.h"
#include "lake/Lake.h"

inline std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A file of its own for each test, gone at the end of the scope.
class ScratchFile {
 public:
  explicit ScratchFile(std::string_view bytes = {}) {
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~ScratchFile() { std::filesystem::remove(path_); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  CString name() const { return kestrin::Text::FromUtf8(path_); }
  const std::string& path() const { return path_; }
  std::string bytes() const { return BytesOf(path_); }

 private:
  static std::string next_path() {
    static int made = 0;
    return testing::TempDir() + "l\xC3\xA4ke_" + std::to_string(getpid()) + "_" +
           std::to_string(++made);
  }
  std::string path_ = next_path();
};

// A source of a lake that gives its bytes in pieces, and ends in one of three ways.
struct Medium {
  enum class End { of_file, reports_failure, throws };
  std::size_t piece;
  End end;
  std::string_view rest = {};

  std::optional<std::size_t> operator()(std::span<char> block) {
    if (rest.empty() && end == End::throws) throw std::runtime_error("medium");
    if (rest.empty() && end == End::reports_failure) return std::nullopt;
    const std::size_t count = rest.copy(block.data(), std::min(piece, block.size()));
    rest.remove_prefix(count);
    return count;
  }
};

inline CLake FromBytes(std::string_view bytes) { return CLake(ScratchFile(bytes).name()); }

inline std::string ToBytes(const CLake& lake) {
  const ScratchFile file;
  return lake.write(file.name()) ? file.bytes() : "not written";
}
