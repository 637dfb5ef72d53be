#include "inspect/Tidy.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"
#include "lake/LakeReader.h"

namespace kestrin {
namespace {

constexpr std::size_t most_tabs = 32;

// Bytes as wide text and back; a file without the mark has one character in each byte.
struct Encoding {
  bool is_utf8;

  std::wstring Decode(std::string_view bytes) const {
    if (is_utf8) return Text::FromUtf8(bytes);
    std::wstring text;
    for (const char byte : bytes) text += static_cast<unsigned char>(byte);
    return text;
  }
  std::string Encode(std::wstring_view text) const {
    if (is_utf8) return Text::ToUtf8(text);
    std::string bytes;
    for (const wchar_t c : text) bytes += static_cast<char>(c);
    return bytes;
  }
};

class Tidier {
 public:
  // False if nothing from the line on is read.
  bool Add(std::wstring_view line) {
    const std::wstring_view blanks = AligningBlanks(line);
    line = Text::Trim(line);
    const CLake::CNode node = LakeReader::line(line);
    const bool is_closing = !node.is_named() && node.value().starts_with(L'}');
    if (is_closing && depth_ == 0) return false;
    if (is_closing) --depth_;
    if (depth_ == 0 && !is_closing) {
      blank_ = blank_ || line.empty();
      if (line.empty()) return true;
      AddBlank();
      if (node.is_section()) SetOff();
    }
    std::wstring text(line.empty() ? 0 : std::min(depth_, most_tabs), L'\t');
    if (depth_ > 0 && !line.empty() && !is_closing) text += blanks;
    lines_.push_back(text += Canonical(line, node, is_closing));
    blank_ = is_closing && depth_ == 0;
    if (node.is_section()) ++depth_;
    return true;
  }

  // The blank line that is due, if one is.
  void AddBlank() {
    if (blank_ && !lines_.empty()) lines_.emplace_back();
  }

  std::wstring Lines() const {
    std::wstring text;
    for (const std::wstring& line : lines_) text.append(line).append(L"\n");
    return text;
  }

 private:
  // What lines numbers up in a column: the blanks between the tabs of a line and its text.
  static std::wstring_view AligningBlanks(std::wstring_view line) {
    line = line.substr(0, std::min(line.find_first_not_of(L" \t"), line.size()));
    const std::size_t tab = line.rfind(L'\t');
    return tab == line.npos ? std::wstring_view() : line.substr(tab + 1);
  }

  // A blank line in front of the section that is to come, with the comments right above it.
  void SetOff() {
    auto place = lines_.end();
    while (place != lines_.begin() && std::prev(place)->starts_with(L';')) --place;
    if (place != lines_.begin() && !std::prev(place)->empty()) lines_.emplace(place);
  }

  static std::wstring Canonical(std::wstring_view line, const CLake::CNode& node, bool is_closing) {
    if (node.is_named()) {
      return node.value().empty() ? node.key() + L":" : node.key() + L": " + node.value();
    }
    if (node.is_section()) return node.value();
    if (is_closing && !node.comment().empty()) return node.value() + L"\t; " + node.comment();
    return std::wstring(line);
  }

  std::vector<std::wstring> lines_;
  std::size_t depth_ = 0;
  bool blank_ = false;  // one stood outside of all sections, or a section has just ended
};

}  // namespace

std::string Tidied(std::string_view file) {
  const bool is_marked = file.starts_with(Utf::mark);
  if (!is_marked && file.starts_with(Utf::mark.front())) return std::string(file);
  const Encoding encoding{is_marked};
  std::string_view rest = file.substr(is_marked ? Utf::mark.size() : 0);
  Tidier tidier;
  while (!rest.empty()) {
    const std::string_view bytes = rest.substr(0, rest.find('\n'));
    const std::wstring line = encoding.Decode(bytes);
    if (encoding.Encode(line) != bytes || !tidier.Add(line)) break;
    rest.remove_prefix(std::min(bytes.size() + 1, rest.size()));
  }
  if (!rest.empty()) tidier.AddBlank();
  return std::string(is_marked ? Utf::mark : "") + encoding.Encode(tidier.Lines()) +
         std::string(rest);
}

}  // namespace kestrin
