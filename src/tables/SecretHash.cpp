#include "tables/SecretHash.h"

#include <unistd.h>

#include <chrono>

namespace {

// Odd, so never zero, with which all hashes would be equal.
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

// Up to four code units.
std::uint64_t Pack(std::wstring_view units) {
  std::uint64_t number = 0;
  for (const wchar_t unit : units) number = number << 16U | static_cast<std::uint64_t>(unit);
  return number;
}

}  // namespace

SecretHash::SecretHash() : SecretHash(SecretOfProcess()) {}

// Eight code units a step, and the last eight at the end, some of them once more. One factor holds
// the secret, the other what came before, which begins as another secret, since equal ones could be
// exchanged. So what a difference between two texts comes to depends on the secret, and nobody can
// write texts that are known to collide.
std::size_t SecretHash::operator()(std::wstring_view text) const {
  std::uint64_t hash = Fold(secret_ ^ text.size() ^ spread, secret_);
  const auto take = [&hash, this](std::wstring_view front, std::wstring_view back) {
    hash = Fold(hash ^ Pack(front), secret_ ^ Pack(back));
  };
  if (text.size() < 8) {
    const std::size_t middle = text.size() / 2;
    take(text.substr(0, middle), text.substr(middle));
  } else {
    const std::wstring_view last = text.substr(text.size() - 8);
    for (; text.size() > 8; text.remove_prefix(8)) take(text.substr(0, 4), text.substr(4, 4));
    take(last.substr(0, 4), last.substr(4));
  }
  return Fold(hash ^ spread, secret_);
}
