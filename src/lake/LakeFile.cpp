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
  std::size_t place = line.find_first_of(":;\"");
  while (place < line.size() && line[place] == '"') {
    place = line.find('"', place + 1);
    if (place != line.npos) place = line.find_first_of(":;\"", place + 1);
  }
  return std::min(place, line.size());
}

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

void AppendLine(std::string& text, int depth, const LineParts& line) {
  if (depth > 0) text.append(static_cast<std::size_t>(depth), '\t');
  if (!line.key.empty()) text.append(line.key).append(": ");
  text += line.value;
  if (!line.comment.empty()) text.append("\t; ").append(line.comment);
  text += '\n';
}

}  // namespace

std::size_t LineWalk::NextOf(char c, std::size_t& place) {
  if (place < end_) place = text_.find(c, end_);
  return place;
}

bool LineWalk::Next() {
  if (end_ >= text_.size()) return false;
  const std::size_t feed = std::min(text_.find('\n', end_), text_.size());
  const std::string_view line = text_.substr(end_, feed - end_);
  const bool is_row = NextOf(':', colon_) >= feed && NextOf(';', semicolon_) >= feed;
  line_ = is_row ? LineParts{{}, Utf::Trim(line), {}} : Split(line);
  begin_ = end_;
  end_ = feed + 1;
  depth_ = open_;
  if (open_ < 0) return true;
  if (line_.opens_section()) {
    ++open_;
  } else if (line_.closes_section()) {
    depth_ = --open_;
  }
  return true;
}

void LineWalk::SkipToBracket() {
  const std::size_t bracket = std::min(NextOf('{', opening_), NextOf('}', closing_));
  const std::size_t feed = text_.substr(0, bracket).rfind('\n');
  if (feed != text_.npos) end_ = std::max(end_, feed + 1);
}

void CLake::FileText::FindTops() {
  Top* open = nullptr;
  std::size_t first = 0;
  const auto close = [&](std::size_t end) {
    if (open != nullptr) open->lines = lines.substr(first, end - first);
    open = nullptr;
  };
  for (LineWalk walk(lines); walk.Next() && walk.Depth() >= 0;) {
    const LineParts& line = walk.Line();
    if (walk.Depth() == 0) {
      close(walk.Begin());
      if (!line.key.empty()) {
        Top& top = tops.try_emplace(Text::FromBytes(line.key), Top{line.value}).first->second;
        if (line.opens_section()) {
          top.is_section = true;
          open = &top;
          first = walk.End();
        }
      }
    }
    if (walk.Depth() > 0 || line.opens_section()) walk.SkipToBracket();
  }
  close(lines.size());
}

void CLake::CNode::set_line(const LineParts& line) {
  bytes_ = line.value;
  is_section_ = opens_section();
  if (line.key.empty() && line.comment.empty()) return;
  Extra& own = make_extra();
  own.key = Text::FromBytes(line.key);
  own.comment = Text::FromBytes(line.comment);
}

void CLake::CNode::set_own_line(std::wstring_view line) {
  const std::string bytes = Text::ToBytes(line);
  const auto [key, value, comment] = Split(bytes);
  set_texts(Text::FromBytes(key), Text::FromBytes(value), Text::FromBytes(comment));
  is_section_ = opens_section();
}

void CLake::CNode::append_line(std::string& text) const {
  const std::string key_bytes = Text::ToBytes(key());
  const std::string comment_bytes = Text::ToBytes(comment());
  std::string room;
  AppendLine(text, depth_, {key_bytes, bytes(room), comment_bytes});
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

// All bytes that the source has; false if the medium failed behind them. Where the size is known,
// no more memory is taken than they need.
bool ReadBytes(const LakeReader::Source& source, std::size_t size, std::string& bytes) {
  bytes.reserve(size + 1);  // one more, to find that there is nothing behind them
  for (;;) {
    const std::size_t have = bytes.size();
    const std::size_t room = bytes.capacity() - have;
    bytes.resize(have + (room > 0 ? std::min(room, block_size) : block_size));
    const auto count = source(std::span(bytes).subspan(have));
    bytes.resize(have + count.value_or(0));
    if (!count || *count == 0) return count.has_value();
  }
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

// Takes what is text off the front of a file's bytes, in the form of a lake: nearly always those
// very bytes, else what is made of them in `room`.
Utf::Sequence::State TakeText(std::string_view bytes, bool is_utf8, std::string& room,
                              std::string_view& text) {
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
      room.append(taken, from);
      AppendCharacter(room, next.code);
    }
    from += next.length;
    if (changes) taken = from;
  }
  text = taken == bytes.data() ? std::string_view(taken, from) : room.append(taken, from);
  return state;
}

// Makes a file's bytes the text of a lake, up to what it gives as a reason if that isn't the end.
Refusal::Reason Decode(std::string& bytes, bool is_sound, std::string_view& text) {
  const bool is_utf8 = bytes.starts_with(Utf::mark);
  if (!is_utf8 && bytes.starts_with(Utf::mark.front())) return Refusal::broken_mark;
  const auto front = is_utf8 ? Utf::mark.size() : 0;
  std::string room;
  const auto state = TakeText(std::string_view(bytes).substr(front), is_utf8, room, text);
  if (!room.empty()) {
    room.shrink_to_fit();
    text = bytes = std::move(room);
  }
  if (state == Utf::Sequence::invalid) return Refusal::broken_text;
  if (!is_sound) return Refusal::broken_medium;
  return state == Utf::Sequence::cut ? Refusal::broken_text : Refusal::none;
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
  const auto text = std::make_shared<CLake::FileText>();
  const bool is_sound = ReadBytes(source, size, text->bytes);
  const Refusal::Reason reason = Decode(text->bytes, is_sound, text->lines);
  lake.last_refusal_ = CutOff(reason, lake.filename_, text->lines);
  if (reason == Refusal::broken_mark) return false;
  text->FindTops();
  lake.text_ = text;
  lake.lines_.Set(nullptr);
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
    if (lines_.Get() != nullptr) link_root({});
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
  if (lines_.Get() != nullptr) {
    for (const CNode& line : *this) {
      line.append_line(text);
      if (text.size() >= block_size && !put()) return true;
    }
  } else if (text_ != nullptr) {
    for (LineWalk walk(text_->lines); walk.Next();) {
      AppendLine(text, walk.Depth(), walk.Line());
      if (text.size() >= block_size && !put()) return true;
    }
  }
  put();
  return true;
}

CLake& CParameterLake::Lake() {
  static CLake lake;
  return lake;
}
