#include "interfaces/sea/LogListener.h"

#include <utility>

using namespace kestrin;

namespace {

thread_local const LogSubject* subject = nullptr;
thread_local const LogListener* listener = nullptr;

}  // namespace

LogSubject::LogSubject(const wchar_t* table) : LogSubject(table, {}) {}

LogSubject::LogSubject(const wchar_t* table, std::span<const int> ids)
    : section(table), key(ids), around_(std::exchange(subject, this)) {}

LogSubject::~LogSubject() { subject = around_; }

LogListener::LogListener(Take take)
    : take_(std::move(take)), around_(std::exchange(listener, this)) {}

LogListener::~LogListener() { listener = around_; }

bool LogListener::Tell(std::wstring_view text) {
  if (listener == nullptr) return false;
  listener->take_(text, subject);
  return true;
}
