#include "Fuzz.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <system_error>

#include "interfaces/sea/PrWin.h"

namespace fuzz {

namespace {

// The sink to go back to. A target has one quiet log at a time.
PrWin::Sink& Before() {
  static PrWin::Sink before;
  return before;
}

}  // namespace

QuietLog::QuietLog() {
  Before() = PrWin::SetSink([this](std::wstring_view text, auto, auto) {
    ++logged_.lines;
    logged_.characters += text.size();
    logged_.hash = 31 * logged_.hash + std::hash<std::wstring_view>()(text);
  });
}

QuietLog::~QuietLog() { PrWin::SetSink(std::exchange(Before(), nullptr)); }

WideLocale::WideLocale() {
  static const locale_t utf8 = [] {
    const char* const path = std::getenv("LOCPATH");
    const std::string before = path != nullptr ? path : "";
    unsetenv("LOCPATH");  // newlocale loses memory with it
    const locale_t made = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (!before.empty()) setenv("LOCPATH", before.c_str(), 1);
    return made;
  }();
  Require(utf8 != nullptr, "the system knows C.UTF-8");
  before_ = uselocale(utf8);
}

MemoryFile::MemoryFile(Bytes bytes) : handle_(memfd_create("kestrin-fuzz", MFD_CLOEXEC)) {
  while (!bytes.empty()) {
    const ssize_t count = handle_ < 0 ? -1 : write(handle_, bytes.data(), bytes.size());
    if (count <= 0) throw std::system_error(errno, std::generic_category(), "file in memory");
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

MemoryFile::~MemoryFile() { close(handle_); }

std::wstring MemoryFile::name() const { return L"/proc/self/fd/" + std::to_wstring(handle_); }

std::string MemoryFile::bytes() const {
  struct stat status {};
  fstat(handle_, &status);
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = pread(handle_, bytes.data(), bytes.size(), 0);
  bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return bytes;
}

}  // namespace fuzz
