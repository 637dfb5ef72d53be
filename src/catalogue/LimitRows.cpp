#include "catalogue/LimitRows.h"

#include <atomic>
#include <chrono>

namespace {

long long SystemSeconds() {
  using std::chrono::system_clock;
  return std::chrono::duration_cast<std::chrono::seconds>(system_clock::now().time_since_epoch())
      .count();
}

std::atomic<QVIpLearnParameter::Clock> learn_clock{&SystemSeconds};

}  // namespace

QVIpLearnParameter::Clock QVIpLearnParameter::SetClock(Clock clock) {
  return learn_clock.exchange(clock != nullptr ? clock : &SystemSeconds);
}

QVIpLearnParameter::QVIpLearnParameter() : time_1(learn_clock.load()()), time_2(time_1) {}
