// A hash with a secret that each process draws for itself. Parameter files are written by others:
// with a hash that everybody can compute, a file of a few megabytes could hold keys that all stand
// in one place of a hash table, and searching them would take the square of their number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The same for equal arguments during a process, another in the next one: never write it into a
// file. Any thread may use it at any time.
class SecretHash {
 public:
  // Hash tables whose keys are std::wstring can be searched by a view, without a copy of it.
  using is_transparent = void;

  SecretHash();
  explicit SecretHash(std::uint64_t secret) : secret_(secret) {}  // an odd number

  // Of UTF-16 code units.
  std::size_t operator()(std::wstring_view text) const;

  // Folds twice, since numbers close to each other have products close to each other.
  std::uint64_t operator()(std::uint64_t number) const {
    return Fold(Fold(number ^ spread, secret_) ^ spread, secret_);
  }

 private:
  __extension__ using Wide = unsigned __int128;

  // Keeps products of small numbers from being small.
  static constexpr std::uint64_t spread = 0x9E3779B97F4A7C15U;

  // Both halves of the product count.
  static std::uint64_t Fold(std::uint64_t a, std::uint64_t b) {
    const Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
  }

  std::uint64_t secret_;
};
