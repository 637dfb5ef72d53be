// Lakes: any bytes are read, written and read again; the tree is then the same. The last bytes of
// an input say whether and how the tree is changed before it is written. Before, a second reader,
// as plain as can be, has read the same bytes and found the same lines.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cwctype>
#include <map>
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

// ---- the second reader ----

struct Line {
  std::wstring key, value, comment;
  bool is_section = false;
  int depth = -1;
  std::map<std::wstring, std::size_t> named;  // the first line of each key
  std::vector<std::size_t> unnamed;
};

// Up to what is not UTF-8. Longer forms than needed and surrogates by themselves are let through.
std::wstring Decoded(Bytes bytes) {
  std::wstring text;
  while (!bytes.empty()) {
    const int ones = std::countl_one(bytes[0]);
    const std::size_t more = ones == 0 ? 0 : static_cast<std::size_t>(ones) - 1;
    if (ones == 1 || ones > 6 || bytes.size() <= more) return text;  // FE and FF lead too far
    char32_t c = bytes[0] & (0x7FU >> ones);
    for (const std::uint8_t next : bytes.subspan(1, more)) {
      if (std::countl_one(next) != 1) return text;
      c = c << 6 | (next & 0x3FU);
    }
    if (c > 0x10FFFF) return text;
    if (c > 0xFFFF) text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
    text += static_cast<wchar_t>(c > 0xFFFF ? 0xDC00 + (c & 0x3FF) : c);
    bytes = bytes.subspan(1 + more);
  }
  return text;
}

// A high surrogate goes out with the low one behind it; without, as U+FFFD.
std::string Encoded(const std::wstring& text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto c = static_cast<char32_t>(text[i]);
    if ((c & ~0x3FFU) == 0xD800) {
      const auto low = static_cast<char32_t>(text[i + 1]);  // or the zero behind the text
      const bool is_pair = (low & ~0x3FFU) == 0xDC00;
      c = is_pair ? 0x10000 + ((c & 0x3FF) << 10) + (low & 0x3FF) : 0xFFFD;
      if (is_pair) ++i;
    }
    const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr char32_t leads[] = {0, 0xC0, 0xE0, 0xF0};
    bytes += static_cast<char>(leads[more] | c >> 6 * more);
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6) {
      bytes += static_cast<char>(0x80 | (c >> shift & 0x3F));
    }
  }
  return bytes;
}

std::wstring Trimmed(std::wstring text) {
  const auto is_space = [](wchar_t c) { return std::iswspace(static_cast<wint_t>(c)) != 0; };
  while (!text.empty() && is_space(text.front())) text.erase(0, 1);
  while (!text.empty() && is_space(text.back())) text.pop_back();
  return text;
}

Line LineOf(const std::wstring& text) {
  bool quoted = false;
  std::size_t stop = 0;  // the first colon or semicolon outside of quotes
  for (; stop < text.size(); ++stop) {
    if (text[stop] == L'"') quoted = !quoted;
    if (!quoted && (text[stop] == L':' || text[stop] == L';')) break;
  }
  Line line;
  line.value = Trimmed(text);
  if (text[stop] == L':') {
    line.key = Trimmed(text.substr(0, stop));
    line.value = Trimmed(text.substr(stop + 1));
  } else if (text[stop] == L';' && (line.value[0] == L'}' || line.value[0] == L';')) {
    line.value = Trimmed(text.substr(0, stop));
    line.comment = Trimmed(text.substr(stop + 1));
  }
  line.is_section = line.value == L"{";
  return line;
}

// The root, which is number 0, and all lines; nothing behind a broken mark.
std::optional<std::vector<Line>> LinesOf(Bytes bytes) {
  const WideLocale locale;
  std::wstring text(bytes.begin(), bytes.end());
  if (text.starts_with(L'\xEF')) {
    if (!text.starts_with(L"\xEF\xBB\xBF")) return std::nullopt;
    text = Decoded(bytes.subspan(3));
  }
  std::vector<Line> lines(1);
  lines[0].is_section = true;
  std::vector<std::size_t> open = {0};  // sections; none behind a bracket that closes the root
  while (!text.empty()) {
    const std::size_t length = std::min(text.find(L'\n'), text.size());
    const std::size_t self = lines.size();
    Line& line = lines.emplace_back(LineOf(text.substr(0, length)));
    text.erase(0, length + 1);
    if (open.empty()) continue;
    Line& parent = lines[open.back()];
    const bool closes = line.key.empty() && line.value.starts_with(L'}');
    line.depth = parent.depth + (closes ? 0 : 1);
    if (closes) {
      open.pop_back();
      continue;
    }
    if (line.key.empty()) parent.unnamed.push_back(self);
    const std::size_t first =
        line.key.empty() ? self : parent.named.emplace(line.key, self).first->second;
    if (!line.is_section) continue;
    lines[first].is_section = true;  // and it shows the lines of the last section of its key
    lines[first].named.clear();
    lines[first].unnamed.clear();
    open.push_back(first);
  }
  return lines;
}

std::string FileOf(const std::vector<Line>& lines) {
  std::wstring text;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const Line& line = lines[i];
    text.append(static_cast<std::size_t>(std::max(line.depth, 0)), L'\t');
    if (!line.key.empty()) text += line.key + L": ";
    text += line.value;
    if (!line.comment.empty()) text += L"\t; " + line.comment;
    text += L'\n';
  }
  return text.empty() ? "" : "\xEF\xBB\xBF" + Encoded(text);
}

// ---- the lake ----

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

std::wstring AsWritten(const std::wstring& text) {
  const std::string bytes = Encoded(text);
  return Decoded({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
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

void RequireSame(const Node& node, const Line& line, const std::vector<const Node*>& nodes) {
  Require(node.key() == line.key && node.value() == line.value && node.comment() == line.comment,
          "the second reader reads the same texts");
  Require(node.is_section() == line.is_section && node.named_size() == line.named.size() &&
              node.unnamed_size() == line.unnamed.size(),
          "the second reader finds the same sections");
  for (const auto& [key, child] : line.named) {
    Require(&*node.find(key) == nodes[child], "the second reader finds the same line for a key");
  }
  Require(std::equal(line.unnamed.begin(), line.unnamed.end(), node.begin_unnamed(),
                     [&](std::size_t child, auto row) { return nodes[child] == &*row; }),
          "the second reader finds the same rows");
}

// What is there without the nodes.
void RequireText(const CLake& lake, const std::vector<Line>& lines) {
  Require(Written(lake) == FileOf(lines), "the second reader writes the same");
  for (const auto& [key, place] : lines[0].named) {
    const kestrin::RootLine top = lake.root_line(key);
    const Line& line = lines[place];
    Require(top.exists && top.value == line.value && top.is_section == line.is_section,
            "the second reader finds the same line at the top");
    for (const std::size_t child : line.unnamed) {
      const auto row = top.next_row();
      Require(row && kestrin::Text::FromBytes(*row) == lines[child].value,
              "the second reader finds the same row of a section at the top");
    }
    Require(!top.next_row() && line.unnamed.size() == top.rows, "a section ends");
  }
  Require(!lake.root_line(L"a: key").exists, "a key that no line can have is missed");
}

void RequireRead(const CLake& lake, bool result, Bytes bytes) {
  const auto lines = LinesOf(bytes);
  Require(result == lines.has_value(), "what has no broken mark is read");
  if (!lines) return Require(lake.empty(), "what can't be read leaves the lines");
  RequireText(lake, *lines);
  RequireText(CLake(lake), *lines);
  std::vector<const Node*> nodes = {&lake.root()};
  for (const Node& node : lake) nodes.push_back(&node);
  Require(nodes.size() == lines->size(), "the second reader reads as many lines");
  for (std::size_t i = 0; i < nodes.size(); ++i) RequireSame(*nodes[i], (*lines)[i], nodes);
  RequireText(lake, *lines);
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
  const std::size_t piece = bytes.size() % 8;
  const bool result = ReadInPieces(lake, bytes, piece != 0 ? piece : bytes.size());
  RequireRead(lake, result, bytes);
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
