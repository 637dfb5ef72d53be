// Fuzzing: bytes that nobody has thought of, put through everything that reads what comes from
// outside, under the address and undefined-behaviour sanitizers.
//
// A target takes any bytes. It fails by crashing, by a sanitizer's word, by taking too long or too
// much memory, and by breaking a property that it states itself, such as that what was written
// reads back the same; that is an exception. Each target is a function here, a file of its own, and
// a program of libFuzzer of the name fuzz_<target>; the tests replay the files under corpus/, from
// which the search starts, and regressions/, what it found and what has been mended since.
#pragma once

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace fuzz {

using Bytes = std::span<const std::uint8_t>;

void Lake(Bytes bytes);
void Load(Bytes bytes);
void Orders(Bytes bytes);
void TableFile(Bytes bytes);
void Rows(Bytes bytes);
void Sea(Bytes bytes);
void KeyEditor(Bytes bytes);

struct Target {
  const char* name;
  void (*run)(Bytes);
  std::size_t most_bytes;  // of an input: longer ones say no more, and take longer
};
inline constexpr Target targets[] = {
    {"lake", Lake, 2048},
    {"load", Load, 8192},  // derived tables hold pairs of rows, so that the size counts twice
    {"orders", Orders, 4096},
    {"table_file", TableFile, 8192},
    {"rows", Rows, 1024},
    {"sea", Sea, 16384},
    {"key_editor", KeyEditor, 1024}};

inline void Require(bool holds, const char* property) {
  if (!holds) throw std::logic_error(property);
}

// Takes values off the front of the bytes; behind their end all are 0.
class Input {
 public:
  explicit Input(Bytes bytes) : rest_(bytes) {}

  bool empty() const { return rest_.empty(); }

  template <class T>
  T Take() {
    T value{};
    const std::size_t count = std::min(sizeof value, rest_.size());
    if (count != 0) std::memcpy(&value, rest_.data(), count);
    rest_ = rest_.subspan(count);
    return value;
  }

  // A number below `count`, which is not 0.
  std::size_t Below(std::size_t count) { return Take<std::uint8_t>() % count; }

  // Up to `count` bytes.
  Bytes Some(std::size_t count) {
    const Bytes front = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(front.size());
    return front;
  }

  Bytes Rest() { return Some(rest_.size()); }

 private:
  Bytes rest_;
};

inline std::string_view AsText(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// How much has been logged, and a hash of it, in place of the log itself, which would cost most of
// the time.
struct Logged {
  std::size_t lines = 0;
  std::size_t characters = 0;
  std::size_t hash = 0;

  friend bool operator==(const Logged&, const Logged&) = default;
};

// Counts what is logged while it lives.
class QuietLog {
 public:
  QuietLog();
  QuietLog(const QuietLog&) = delete;
  QuietLog& operator=(const QuietLog&) = delete;
  ~QuietLog();

  const Logged& logged() const { return logged_; }

  // What has been logged since the last call, or since the beginning.
  Logged Take() { return std::exchange(logged_, {}); }

 private:
  Logged logged_;
};

// The wide functions of C hold for white what a UTF-8 system does, on this thread, while it lives.
// The library answers the same without it.
class WideLocale {
 public:
  WideLocale();
  WideLocale(const WideLocale&) = delete;
  WideLocale& operator=(const WideLocale&) = delete;
  ~WideLocale() { uselocale(before_); }

 private:
  locale_t before_;
};

// A file in memory that has a name for the system: what is written and read by name costs no disk.
class MemoryFile {
 public:
  explicit MemoryFile(Bytes bytes = {});
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  std::wstring name() const;
  std::string bytes() const;

 private:
  int handle_;
};

}  // namespace fuzz
