// The lake alone: a file read and written back, against the same bytes taken through wide text and
// back with no lines in between.

#include <algorithm>
#include <string>
#include <string_view>

#include "Benchmarks.h"
#include "RowParser.h"

using namespace kestrin;

namespace benchmarks {
namespace {

constexpr std::size_t block = std::size_t{64} * 1024;

void AppendUtf8(std::string& utf8, std::wstring_view wide) {
  const auto is_ascii = [](wchar_t c) { return c < 0x80; };
  while (!wide.empty()) {
    const auto other = std::find_if_not(wide.begin(), wide.end(), is_ascii);
    utf8.append(wide.begin(), other);
    const auto ascii = std::find_if(other, wide.end(), is_ascii);
    if (other != ascii) utf8 += Text::ToUtf8({other, ascii});
    wide.remove_prefix(static_cast<std::size_t>(ascii - wide.begin()));
  }
}

// Through wide text and back in blocks of whole lines.
std::string ThereAndBack(std::string_view bytes) {
  std::string back;
  back.reserve(bytes.size());
  std::wstring wide;
  while (!bytes.empty()) {
    const std::string_view lines = bytes.substr(0, bytes.find('\n', block));
    wide.clear();
    AppendWide(wide, lines);
    AppendUtf8(back, wide);
    bytes.remove_prefix(lines.size());
  }
  return back;
}

}  // namespace

void RegisterLakes(const Files& files) {
  static const TemporaryFile copy([] { return std::string(); });
  RegisterWork("lake/read and write/lKestrinDb", 15, Heap::kept, [&files] {
    auto lake = std::make_unique<CLake>(Text::FromUtf8(files.medium.Name()));
    lake->write(Text::FromUtf8(copy.Name()));
    return lake;
  });
  RegisterWork("lake/read and write/bare limit", 15, Heap::kept, [&files] {
    std::string back = ThereAndBack(ReadFile(files.medium.Name()));
    WriteFile(copy.Name(), back);
    return back;
  });
}

}  // namespace benchmarks
