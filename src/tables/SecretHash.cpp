#include "tables/SecretHash.h"

#include <unistd.h>

#include <chrono>

namespace {

__extension__ using Wide = unsigned __int128;

// Odd, so that a product with it loses nothing.
std::uint64_t SecretOfProcess() {
  static const std::uint64_t secret = [] {
    std::uint64_t number = 0;
    if (getentropy(&number, sizeof number) != 0) {
      number =
          static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    return number | 1U;
  }();
  return secret;
}

}  // namespace

SecretHash::SecretHash() : secret_(SecretOfProcess()) {}

// Both halves of the product count: so what a difference between two parts comes to depends on the
// secret, and nobody can write texts that are known to collide.
inline void SecretHash::Mix(std::uint64_t& hash, std::uint64_t part) const {
  const Wide product = Wide{hash ^ part ^ 0x9E3779B97F4A7C15U} * secret_;
  hash = static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

// Four code units a step.
std::size_t SecretHash::operator()(std::wstring_view text) const {
  const auto unit = [&text](std::size_t i) { return static_cast<std::uint64_t>(text[i]); };
  std::uint64_t hash = secret_ ^ text.size();
  for (; text.size() >= 4; text.remove_prefix(4)) {
    Mix(hash, unit(0) | unit(1) << 16U | unit(2) << 32U | unit(3) << 48U);
  }
  for (std::size_t i = 0; i < text.size(); ++i) Mix(hash, unit(i));
  return static_cast<std::size_t>(hash);
}

// Twice, since numbers close to each other have products close to each other.
std::uint64_t SecretHash::operator()(std::uint64_t number) const {
  std::uint64_t hash = secret_;
  Mix(hash, number);
  Mix(hash, 0);
  return hash;
}
