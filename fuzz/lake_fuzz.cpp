// Lakes: any bytes are read, written and read again; the tree is then the same. The last bytes of
// an input say whether and how the tree is changed before it is written.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "interfaces/text/Text.h"
#include "lake/Lake.h"
#include "lake/LakeReader.h"

namespace fuzz {
namespace {

using Node = CLake::CNode;

// Hands the bytes on in pieces, whose sizes change, so that cuts fall everywhere.
bool ReadInPieces(CLake& lake, Bytes bytes, std::size_t piece) {
  return kestrin::LakeReader::read(
      lake, [=](std::span<char> block) mutable -> std::optional<std::size_t> {
        const std::size_t count = std::min({piece, block.size(), bytes.size()});
        std::copy_n(bytes.begin(), count, block.begin());
        bytes = bytes.subspan(count);
        return count;
      });
}

std::string Written(const CLake& lake) {
  const MemoryFile file;
  Require(lake.write(file.name()), "a lake can be written");
  return file.bytes();
}

CLake Read(std::string_view bytes) {
  CLake lake;
  Require(ReadInPieces(lake, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                       bytes.size()),
          "what was written can be read");
  return lake;
}

// A high surrogate without a low one goes out as U+FFFD.
std::wstring AsWritten(std::wstring text) {
  const auto is_part = [&](std::size_t i, wchar_t first) {
    return i < text.size() && (text[i] & ~0x3FF) == first;
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (is_part(i, 0xD800) && !is_part(i + 1, 0xDC00)) text[i] = L'\xFFFD';
  }
  return text;
}

bool SameText(const std::wstring& before, const std::wstring& after) {
  return before == after || AsWritten(before) == after;
}

bool SameLine(const Node& before, const Node& after) {
  return SameText(before.key(), after.key()) && SameText(before.value(), after.value()) &&
         SameText(before.comment(), after.comment()) && before.is_section() == after.is_section() &&
         before.named_size() == after.named_size() && before.unnamed_size() == after.unnamed_size();
}

// A line without a key bears a text that reads as something else only if a colon stood in front of
// it. Written without that colon it changes its meaning.
bool ReadsAsItStands(const Node& node) {
  if (node.is_named()) return true;
  const std::wstring& value = node.value();
  bool quoted = false;
  for (const wchar_t c : value) {
    if (c == L'"') quoted = !quoted;
    if (quoted) continue;
    if (c == L':') return false;
    if (c == L';') return value.front() != L';' && value.front() != L'}';
  }
  return true;
}

void RequireSame(const CLake& before, const CLake& after) {
  auto line = after.begin();
  for (const Node& node : before) {
    Require(line != after.end(), "no line is lost");
    Require(SameLine(node, *line), "a line reads back as it was");
    ++line;
  }
  Require(line == after.end(), "no line is added");
  Require(SameLine(before.root(), after.root()), "the top level reads back as it was");
}

void RequireRoundTrip(const CLake& lake) {
  const CLake again = Read(Written(lake));
  const bool faithful = std::all_of(lake.begin(), lake.end(), [](const Node& node) {
    return ReadsAsItStands(node) && AsWritten(node.key()) == node.key();  // two could become one
  });
  if (faithful) RequireSame(lake, again);
}

// Each closing line has a bracket to close, so that none ends the top level. The first line of a
// key is a section without one if a later line of that key has it.
bool IsBalanced(const CLake& lake) {
  int open = 0;
  for (const Node& node : lake) {
    if (node.value() == L"{") ++open;
    if (!node.is_named() && node.value().starts_with(L'}') && --open < 0) return false;
  }
  return open == 0;
}

void RequireIndexes(const CLake& lake) {
  for (const Node& node : lake) {
    for (auto named = node.begin_named(); named != node.end_named(); ++named) {
      Require(&*node.find(named->first) == &*named->second, "a key finds its line");
    }
    for (auto line = node.begin_unnamed(); line != node.end_unnamed(); ++line) {
      Require(!(*line)->is_named(), "a row has no key");
    }
  }
}

// Texts that stay what they are when they are written and read.
std::wstring PlainText(Input& input) {
  static const std::vector<std::wstring> texts = {L"1 Raw", L"", L"17 \"a:b;c\"", L"x"};
  return texts[input.Below(texts.size())];
}

// False if a section was cleared, which leaves the lines of its child sections in the list: they
// belong elsewhere when they are read again.
bool Change(CLake& lake, Input& input) {
  static const std::vector<std::wstring> keys = {L"<TMode>", L"a", L"b", L"c"};
  Node* section = &lake.root();
  bool as_read = true;
  for (int i = 0; i < 64 && !input.empty(); ++i) {
    const std::wstring& key = keys[input.Below(keys.size())];
    auto found = (*section)[key];
    switch (input.Below(8)) {
      case 0:
        if (!found.exists() || !found->is_section()) found = PlainText(input);
        break;
      case 1:
        found.push_back(PlainText(input));
        break;
      case 2:
        found.make_section();
        break;
      case 3:
        section->clear_section();
        as_read = false;
        break;
      case 4:
        if (lake.begin() != lake.end() && std::distance(lake.begin(), lake.end()) < 64) {
          lake.merge(lake);
          section = &lake.root();
        }
        break;
      case 5:
        lake = CLake(lake);
        section = &lake.root();
        break;
      case 6:
        section->push_back(PlainText(input));
        break;
      default:
        section = found.exists() && found->is_section() ? &*found : &lake.root();
    }
  }
  return as_read;
}

// Each line is indented by its nesting when it is written. Few lines below many brackets show the
// same as many, without megabytes of tabs.
bool IsWrittenSmall(Bytes bytes) {
  const auto brackets = std::count(bytes.begin(), bytes.end(), '{');
  const auto lines = std::count(bytes.begin(), bytes.end(), '\n');
  return brackets * lines < 16384;
}

}  // namespace

void Lake(Bytes bytes) {
  constexpr std::size_t changes = 24;
  if (!IsWrittenSmall(bytes)) return;
  const QuietLog log;
  CLake lake;
  ReadInPieces(lake, bytes, 1 + bytes.size() % 7);
  RequireIndexes(lake);

  Input input(bytes.last(std::min(bytes.size(), changes)));
  if (input.Below(2) != 0) {
    const bool as_read = Change(lake, input);
    RequireIndexes(lake);
    if (!as_read || !IsBalanced(lake)) return RequireIndexes(Read(Written(lake)));
  }
  RequireRoundTrip(lake);
}

}  // namespace fuzz
