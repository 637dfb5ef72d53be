// Lakes from bytes and bytes from lakes, through a file as hosts do it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "interfaces/Text.h"
#include "lake/Lake.h"

// A file of its own for each test, gone at the end of the scope.
class ScratchFile {
 public:
  explicit ScratchFile(std::string_view bytes = {}) {
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~ScratchFile() { std::filesystem::remove(path_); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  CString name() const { return Text::FromUtf8(path_); }
  const std::string& path() const { return path_; }
  std::string bytes() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  static std::string next_path() {
    static int made = 0;
    return testing::TempDir() + "l\xC3\xA4ke_" + std::to_string(getpid()) + "_" +
           std::to_string(++made);
  }
  std::string path_ = next_path();
};

inline CLake FromBytes(std::string_view bytes) { return CLake(ScratchFile(bytes).name()); }

inline std::string ToBytes(const CLake& lake) {
  const ScratchFile file;
  return lake.write(file.name()) ? file.bytes() : "not written";
}
