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
// Bytes go through in large blocks: one read, one conversion, one search for line ends a block.

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cwchar>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "interfaces/text/File.h"
#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"
#include "lake/Lake.h"
#include "lake/LakeReader.h"
#include "lake/Utf8ToUcs2.h"

using namespace kestrin;

using lake_encoding::utf8toucs2;

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
std::size_t FindStop(std::wstring_view line) {
  const auto matters = [](wchar_t c) { return c == L':' || c == L';' || c == L'"'; };
  auto place = std::find_if(line.begin(), line.end(), matters);
  while (place != line.end() && *place == L'"') {
    place = std::find(place + 1, line.end(), L'"');
    if (place != line.end()) place = std::find_if(place + 1, line.end(), matters);
  }
  return static_cast<std::size_t>(place - line.begin());
}

}  // namespace

void CLake::CNode::set_line(std::wstring_view line) {
  const std::size_t stop = FindStop(line);  // it decides what the line is
  std::wstring_view key;
  std::wstring_view value = Text::Trim(line);
  std::wstring_view comment;
  if (stop < line.size() && line[stop] == L':') {
    key = Text::Trim(line.substr(0, stop));
    value = Text::Trim(line.substr(stop + 1));
  } else if (stop < line.size() && (value.front() == L';' || value.front() == L'}')) {
    value = Text::Trim(line.substr(0, stop));
    comment = Text::Trim(line.substr(stop + 1));
  }

  value_ = value;
  is_section_ = opens_section();
  if (!extra_ && key.empty() && comment.empty()) return;
  own_extra().key = key;
  own_extra().comment = comment;
}

void CLake::CNode::append_line(std::wstring& text) const {
  if (depth_ > 0) text.append(static_cast<std::size_t>(depth_), L'\t');
  if (is_named()) text.append(key()).append(L": ");
  text += value_;
  if (!comment().empty()) text.append(L"\t; ").append(comment());
  text += L'\n';
}

std::wistream& operator>>(std::wistream& in, CLake::CNode& node) {
  std::wstring line;
  line.reserve(200);
  std::getline(in, line, L'\n');
  node.set_line(line);
  return in;
}

std::wostream& operator<<(std::wostream& out, const CLake::CNode& node) {
  std::wstring line;
  node.append_line(line);
  return out.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

// ------------------------------------------------------------------------------------- reading

namespace {

// Turns blocks of bytes into blocks of wide text.
class Decoder {
 public:
  explicit Decoder(bool utf8) : utf8_(utf8) {}

  // Takes what it can off the front of the bytes, of which there are at most block_size, and leaves
  // there a sequence that they cut. The text is good until the next call.
  std::wstring_view decode(std::span<const char>& bytes) {
    wchar_t* end = text_.get();
    if (utf8_) {
      const char* next = nullptr;
      const auto outcome = facet_.in(state_, bytes.data(), bytes.data() + bytes.size(), next,
                                     text_.get(), text_.get() + block_size, end);
      broken_ = outcome == utf8toucs2::error;
      bytes = bytes.subspan(static_cast<std::size_t>(next - bytes.data()));
    } else {
      for (const char byte : bytes) *end++ = static_cast<unsigned char>(byte);
      bytes = {};
    }
    return {text_.get(), static_cast<std::size_t>(end - text_.get())};
  }

  // True once the bytes have shown to be no text.
  bool broken() const { return broken_; }

 private:
  const utf8toucs2 facet_{1};
  std::mbstate_t state_{};
  bool utf8_;
  bool broken_ = false;
  // No byte gives more than one unit, so a block always has room.
  std::unique_ptr<wchar_t[]> text_ = std::make_unique_for_overwrite<wchar_t[]>(block_size);
};

// Cuts text into lines, of which most stand whole in one piece.
template <class Take>
class LineCutter {
 public:
  explicit LineCutter(Take take) : take_(take) {}

  void add(std::wstring_view text) {
    for (;;) {
      const std::size_t feed = text.find(L'\n');
      if (feed == std::wstring_view::npos) break;
      if (begun_.empty()) {
        take_(text.substr(0, feed));
      } else {
        begun_ += text.substr(0, feed);
        take_(begun_);
        begun_.clear();
      }
      text.remove_prefix(feed + 1);
    }
    begun_ += text;
  }

  void finish() {
    if (!begun_.empty()) take_(begun_);
  }

 private:
  Take take_;
  std::wstring begun_;
};

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

}  // namespace

bool LakeReader::read(CLake& lake, const Source& source) {
  lake.last_refusal_ = {};
  const auto bytes_read = std::make_unique_for_overwrite<char[]>(block_size);
  const std::span<char> block(bytes_read.get(), block_size);
  std::size_t have = 0;
  bool sound = FillTo(source, block, have, 1);
  bool marked = false;
  if (have > 0 && block[0] == Utf::mark[0]) {
    sound = FillTo(source, block, have, Utf::mark.size());
    marked = std::string_view(block.data(), have).starts_with(Utf::mark);
    if (!marked) {
      lake.last_refusal_ = Refused(
          Refusal::broken_mark, lake.filename_,
          L"begins with a broken UTF-8 mark. Save the file as UTF-8 with a byte order mark.", 1);
      return false;
    }
  }

  auto nodes = CLake::new_nodes();
  CLake::CNode::Linker linker(nodes->front());
  bool in_root = true;  // behind a closing line too many no line belongs to the root
  LineCutter cutter([&](std::wstring_view text) {
    const auto line = nodes->emplace(nodes->end());
    line->set_line(text);
    in_root = in_root && linker.add(line);
  });
  Decoder decoder(marked);
  std::span<const char> bytes(block.data(), have);
  if (marked) bytes = bytes.subspan(Utf::mark.size());
  for (;;) {
    cutter.add(decoder.decode(bytes));
    if (decoder.broken() || !sound) break;
    std::copy(bytes.begin(), bytes.end(), block.begin());
    have = bytes.size();
    const std::size_t kept = have;
    sound = FillTo(source, block, have, kept + 1);
    if (have == kept) break;
    bytes = std::span<const char>(block.data(), have);
  }
  const auto line = static_cast<int>(nodes->size());  // the root counts for the one that is begun
  cutter.finish();
  if (decoder.broken() || (sound && !bytes.empty())) {
    lake.last_refusal_ = Refused(
        Refusal::broken_text, lake.filename_,
        L"is not UTF-8 in line " + std::to_wstring(line) + L", and was read up to there.", line);
  } else if (!sound) {
    lake.last_refusal_ = Refused(Refusal::broken_medium, lake.filename_,
                                 L"was read in part, up to where the medium failed.", line);
  }
  lake.nodes_ = std::move(nodes);
  return sound;
}

bool LakeReader::read(CLake& lake, const Source& source, const CString& filename) {
  lake.filename_ = filename;
  return read(lake, source);
}

bool kestrin::ReadLake(CLake& lake, std::string_view bytes, const CString& filename) {
  const auto source = [&bytes](std::span<char> block) -> std::optional<std::size_t> {
    const std::size_t count = bytes.copy(block.data(), block.size());
    bytes.remove_prefix(count);
    return count;
  };
  return LakeReader::read(lake, source, filename);
}

bool CLake::read(const CString& filename) {
  if (!filename.empty()) filename_ = filename;
  const FilePointer file = OpenFile(filename_, "rbe");
  if (!file) {
    last_refusal_ = Unopened(filename_, errno);
    link_root();
    return true;
  }
  return LakeReader::read(*this, [&](std::span<char> block) -> std::optional<std::size_t> {
    const std::size_t count = std::fread(block.data(), 1, block.size(), file.get());
    if (count == 0 && std::ferror(file.get()) != 0) return std::nullopt;
    return count;
  });
}

// ------------------------------------------------------------------------------------- writing

namespace {

// Replaces what the facet would refuse: one bad character must not cost the rest of a file.
void Repair(std::wstring& text) {
  char32_t highest = 0;
  for (const wchar_t c : text) highest = std::max(highest, static_cast<char32_t>(c));
  if (highest < 0xD800) return;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto unit = static_cast<char32_t>(text[i]);
    const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
    const bool is_alone = Utf::IsHigh(unit) && !Utf::IsLow(next);
    if (unit > 0xFFFF || is_alone) text[i] = static_cast<wchar_t>(Utf::replacement);
  }
}

class Encoder {
 public:
  explicit Encoder(std::FILE* file) : file_(file), bytes_(block_size) {}

  // Writes whole lines; false when the medium takes no more.
  bool write(std::wstring& text) {
    Repair(text);
    const wchar_t* from = text.data();
    const wchar_t* const end = from + text.size();
    while (from != end) {
      char* to = nullptr;
      const auto outcome =
          facet_.out(state_, from, end, from, bytes_.data(), bytes_.data() + bytes_.size(), to);
      assert(outcome != utf8toucs2::error);
      const auto count = static_cast<std::size_t>(to - bytes_.data());
      if (outcome == utf8toucs2::error || std::fwrite(bytes_.data(), 1, count, file_) != count) {
        return false;
      }
    }
    return true;
  }

 private:
  const utf8toucs2 facet_{1};
  std::mbstate_t state_{};
  std::FILE* file_;
  std::vector<char> bytes_;
};

}  // namespace

bool CLake::write(const CString& filename) const {
  if (!filename.empty()) filename_ = filename;
  const FilePointer file = OpenFile(filename_, "wbe");
  if (!file) return false;

  Encoder encoder(file.get());
  std::wstring text;
  for (const CNode& line : *this) {
    line.append_line(text);
    if (text.size() < block_size) continue;
    if (!encoder.write(text)) return true;
    text.clear();
  }
  encoder.write(text);
  return true;
}

CLake& CParameterLake::Lake() {
  static CLake lake;
  return lake;
}
