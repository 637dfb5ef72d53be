// The lake on disk: how lines become text and text becomes lines.
//
//     <TMode>: {             a named section
//     <tab>1 "Run up"        an unnamed line, a row
//     <tab>limit: 3 ; x      a named line; it can't bear a comment, "; x" belongs to the value
//     <tab>; note            a comment line
//     }<tab>; <TMode>        a closing line, which can bear one
//
// A file that begins with the mark EF BB BF is UTF-8 behind it, any other Latin-1. Written is
// always UTF-8 with the mark. Nesting comes from the brackets alone; the tabs are for people.
//
// Whatever the file's encoding, its text becomes one block of UTF-8 that stays; the lines are parts
// of it.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "interfaces/text/File.h"
#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"
#include "lake/Lake.h"
#include "lake/LakeReader.h"

using namespace kestrin;

namespace {

constexpr std::size_t block_size = std::size_t{64} * 1024;

Refusal Refused(Refusal::Reason reason, const CString& file, std::wstring_view what, int line = 0) {
  return {reason, CString(L"The file '" + file + L"' ").append(what), line};
}

Refusal Unopened(const CString& file, int error) {
  const Refusal::Reason reason = error == ENOENT   ? Refusal::missing_file
                                 : error == EISDIR ? Refusal::folder
                                 : error == EACCES ? Refusal::no_right
                                                   : Refusal::unopened;
  return Refused(reason, file, Text::FromUtf8(WhyUnopened(error)) + L".");
}

}  // namespace

// ------------------------------------------------------------------------------------ one line

namespace {

// The place of the first colon or semicolon outside of quotes, or else the line's size.
std::size_t FindStop(std::string_view line) {
  // Most lines have neither.
  if (line.find(':') == line.npos && line.find(';') == line.npos) return line.size();
  std::size_t place = line.find_first_of(":;\"");
  while (place < line.size() && line[place] == '"') {
    place = line.find('"', place + 1);
    if (place != line.npos) place = line.find_first_of(":;\"", place + 1);
  }
  return std::min(place, line.size());
}

struct LineParts {
  std::string_view key;
  std::string_view value;
  std::string_view comment;
};

LineParts Split(std::string_view line) {
  const std::size_t stop = FindStop(line);  // it decides what the line is
  const std::string_view value = Utf::Trim(line);
  if (stop == line.size()) return {{}, value, {}};
  const bool may_have_comment = value.front() == ';' || value.front() == '}';
  if (line[stop] == ';' && !may_have_comment) return {{}, value, {}};
  const std::string_view front = Utf::Trim(line.substr(0, stop));
  const std::string_view rest = Utf::Trim(line.substr(stop + 1));
  return line[stop] == ':' ? LineParts{front, rest, {}} : LineParts{{}, front, rest};
}

}  // namespace

void CLake::CNode::set_line(std::string_view line) {
  const auto [key, value, comment] = Split(line);
  bytes_ = value;
  is_section_ = opens_section();
  if (key.empty() && comment.empty()) return;
  Extra& own = make_extra();
  own.key = Text::FromBytes(key);
  own.comment = Text::FromBytes(comment);
}

void CLake::CNode::set_own_line(std::wstring_view line) {
  const std::string bytes = Text::ToBytes(line);
  const auto [key, value, comment] = Split(bytes);
  set_texts(Text::FromBytes(key), Text::FromBytes(value), Text::FromBytes(comment));
  is_section_ = opens_section();
}

void CLake::CNode::append_line(std::string& text) const {
  if (depth_ > 0) text.append(static_cast<std::size_t>(depth_), '\t');
  if (is_named()) text.append(Text::ToBytes(key())).append(": ");
  std::string room;
  text += bytes(room);
  if (!comment().empty()) text.append("\t; ").append(Text::ToBytes(comment()));
  text += '\n';
}

std::wistream& operator>>(std::wistream& in, CLake::CNode& node) {
  std::wstring line;
  line.reserve(200);
  std::getline(in, line, L'\n');
  node.set_own_line(line);
  return in;
}

std::wostream& operator<<(std::wostream& out, const CLake::CNode& node) {
  std::string bytes;
  node.append_line(bytes);
  const std::wstring line = Text::FromBytes(bytes);
  return out.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

// ------------------------------------------------------------------------------------- reading

namespace {

// Fills the block from `have` on until it holds `want` bytes or the source ends.
bool FillTo(const LakeReader::Source& source, std::span<char> block, std::size_t& have,
            std::size_t want) {
  while (have < want) {
    const auto count = source(block.subspan(have));
    if (!count) return false;
    if (*count == 0) break;
    have += *count;
  }
  return true;
}

// Appends a character in its shortest form. Two surrogates that stand as two sequences are one.
void AppendCharacter(std::string& text, char32_t code) {
  if (Utf::IsLow(code) && text.size() >= 3) {
    const char* const end = text.data() + text.size();
    const Utf::Sequence before = Utf::Read(end - 3, end);
    if (before.state == Utf::Sequence::whole && Utf::IsHigh(before.code)) {
      code = Utf::Joined(before.code, code);
      text.resize(text.size() - 3);
    }
  }
  std::array<char, 4> bytes;
  char* end = bytes.data();
  Utf::Write(code, end);
  text.append(bytes.data(), end);
}

// Takes what it can off the front of a file's bytes, and leaves there a sequence that they cut.
// False if the bytes are no text from there on.
bool TakeText(std::string_view& bytes, bool is_utf8, std::string& text) {
  const char* taken = bytes.data();
  const char* const end = taken + bytes.size();
  auto state = Utf::Sequence::whole;
  const char* from = Utf::SkipAscii(taken, end);
  for (; from != end; from = Utf::SkipAscii(from, end)) {
    const Utf::Sequence next =
        is_utf8 ? Utf::Read(from, end)
                : Utf::Sequence{Utf::Sequence::whole, 1, static_cast<unsigned char>(*from)};
    state = next.state;
    if (state != Utf::Sequence::whole) break;
    const bool changes = next.length != Utf::LengthOf(next.code) || Utf::IsLow(next.code);
    if (changes) {
      text.append(taken, from);
      AppendCharacter(text, next.code);
    }
    from += next.length;
    if (changes) taken = from;
  }
  text.append(taken, from);
  bytes = {from, end};
  return state != Utf::Sequence::invalid;
}

// Reads a text, as a lake keeps it, up to what it gives as a reason if that isn't the end.
Refusal::Reason ReadText(const LakeReader::Source& source, std::string& text) {
  const auto bytes_read = std::make_unique_for_overwrite<char[]>(block_size);
  const std::span<char> block(bytes_read.get(), block_size);
  std::size_t have = 0;
  bool sound = FillTo(source, block, have, Utf::mark.size());
  std::string_view bytes(block.data(), have);
  const bool is_utf8 = bytes.starts_with(Utf::mark);
  if (!is_utf8 && bytes.starts_with(Utf::mark.front())) return Refusal::broken_mark;
  if (is_utf8) bytes.remove_prefix(Utf::mark.size());
  for (;;) {
    if (!TakeText(bytes, is_utf8, text)) return Refusal::broken_text;
    if (!sound) return Refusal::broken_medium;
    std::copy(bytes.begin(), bytes.end(), block.begin());
    have = bytes.size();
    const std::size_t kept = have;
    sound = FillTo(source, block, have, kept + 1);
    if (sound && have == kept) return kept == 0 ? Refusal::none : Refusal::broken_text;
    bytes = {block.data(), have};
  }
}

Refusal CutOff(Refusal::Reason reason, const CString& file, std::string_view text) {
  if (reason == Refusal::none) return {};
  if (reason == Refusal::broken_mark) {
    return Refused(
        reason, file,
        L"begins with a broken UTF-8 mark. Save the file as UTF-8 with a byte order mark.", 1);
  }
  const auto line = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  return Refused(
      reason, file,
      reason == Refusal::broken_text
          ? L"is not UTF-8 in line " + std::to_wstring(line) + L", and was read up to there."
          : L"was read in part, up to where the medium failed.",
      line);
}

}  // namespace

bool LakeReader::read(CLake& lake, const Source& source, std::size_t size) {
  lake.last_refusal_ = {};
  const auto text = std::make_shared<std::string>();
  text->reserve(size);
  const Refusal::Reason reason = ReadText(source, *text);
  lake.last_refusal_ = CutOff(reason, lake.filename_, *text);
  if (reason == Refusal::broken_mark) return false;

  auto lines = CLake::new_lines();
  lines->texts.insert(text);
  CLake::CNode::Linker linker(lines->nodes.front());
  bool in_root = true;  // behind a closing line too many no line belongs to the root
  for (std::string_view rest = *text; !rest.empty();) {
    const std::size_t feed = std::min(rest.find('\n'), rest.size());
    const auto line = lines->nodes.emplace(lines->nodes.end());
    line->set_line(rest.substr(0, feed));
    in_root = in_root && linker.add(line);
    rest.remove_prefix(std::min(feed + 1, rest.size()));
  }
  lake.lines_ = std::move(lines);
  return reason != Refusal::broken_medium;
}

bool LakeReader::read(CLake& lake, std::string_view bytes, const CString& filename) {
  lake.filename_ = filename;
  const std::size_t size = bytes.size();
  const auto source = [&bytes](std::span<char> block) -> std::optional<std::size_t> {
    const std::size_t count = bytes.copy(block.data(), block.size());
    bytes.remove_prefix(count);
    return count;
  };
  return read(lake, source, size);
}

bool kestrin::ReadLake(CLake& lake, std::string_view bytes, const CString& filename) {
  return LakeReader::read(lake, bytes, filename);
}

bool CLake::read(const CString& filename) {
  if (!filename.empty()) filename_ = filename;
  const FilePointer file = OpenFile(filename_, "rbe");
  if (!file) {
    last_refusal_ = Unopened(filename_, errno);
    link_root();
    return true;
  }
  const auto source = [&](std::span<char> block) -> std::optional<std::size_t> {
    const std::size_t count = std::fread(block.data(), 1, block.size(), file.get());
    if (count == 0 && std::ferror(file.get()) != 0) return std::nullopt;
    return count;
  };
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(Text::ToUtf8(filename_), unknown);
  return LakeReader::read(*this, source, unknown ? 0 : size);
}

// ------------------------------------------------------------------------------------- writing

bool CLake::write(const CString& filename) const {
  if (!filename.empty()) filename_ = filename;
  const FilePointer file = OpenFile(filename_, "wbe");
  if (!file) return false;

  std::string text(empty() ? "" : Utf::mark);
  constexpr char surrogate = '\xED';  // with this byte each begins, and few characters do
  const auto put = [&] {
    // A high surrogate in the text has no partner.
    for (auto at = text.find(surrogate); at != text.npos; at = text.find(surrogate, at + 1)) {
      if ((text[at + 1] & '\xF0') == '\xA0') text.replace(at, 3, "\xEF\xBF\xBD");
    }
    const bool is_whole = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    text.clear();
    return is_whole;
  };
  for (const CNode& line : *this) {
    line.append_line(text);
    if (text.size() >= block_size && !put()) return true;
  }
  put();
  return true;
}

CLake& CParameterLake::Lake() {
  static CLake lake;
  return lake;
}
