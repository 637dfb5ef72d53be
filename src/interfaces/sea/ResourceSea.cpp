#include "interfaces/sea/ResourceSea.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

#include "interfaces/sea/PrWin.h"

using namespace kestrin;

// ---- the text of a sea ----

// Between the content of a sea and the text of its file; the format is drawn in the header.
class SeaText {
 public:
  using Content = CResourceSea::Content;

  static std::wstring Write(const Content& content);

  // Reads a whole text. On a fault the content is empty, and Fault and Line say what and where.
  std::optional<Content> Read(std::wstring_view text);
  const wchar_t* Fault() const { return fault_; }
  int Line() const { return line_; }

 private:
  bool ReadLine(std::wstring_view line);
  bool ReadEntry(std::wstring_view line);
  bool ReadList(std::wstring_view rest);
  bool ReadBool(std::wstring_view rest);
  bool Quoted(std::wstring_view& rest, std::wstring& text);
  bool Escaped(std::wstring_view& rest, std::wstring& text);

  bool Fail(const wchar_t* fault) {
    fault_ = fault;
    return false;
  }

  enum class Place { before, inside, behind };

  Content content_;
  CResourceSea::Lines* list_ = nullptr;  // the list whose lines are being read
  Place place_ = Place::before;
  int line_ = 0;
  const wchar_t* fault_ = L"";
};

namespace {

constexpr std::wstring_view kFirstLine = L"sea 1";
constexpr std::wstring_view kLastLine = L"end";

// The escapes of one letter: the letter and what it stands for.
constexpr std::array<std::pair<wchar_t, wchar_t>, 5> kEscapes = {
    {{L'"', L'"'}, {L'\\', L'\\'}, {L'n', L'\n'}, {L'r', L'\r'}, {L't', L'\t'}}};

constexpr std::wstring_view kHexDigits = L"0123456789abcdef";

std::wstring_view NameOf(const wchar_t* name) {
  return name ? std::wstring_view(name) : std::wstring_view();
}

bool IsHighSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(wchar_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void AppendCodeUnit(std::wstring& out, wchar_t c) {
  out += L"\\u";
  for (int shift = 12; shift >= 0; shift -= 4) {
    out += kHexDigits[(static_cast<std::size_t>(c) >> shift) & 0xF];
  }
}

void AppendQuoted(std::wstring& out, std::wstring_view text) {
  out += L'"';
  for (; !text.empty(); text.remove_prefix(1)) {
    const wchar_t c = text.front();
    const auto* const escape = std::find_if(kEscapes.begin(), kEscapes.end(),
                                            [c](const auto& entry) { return entry.second == c; });
    if (escape != kEscapes.end()) {
      out += {L'\\', escape->first};
    } else if (IsHighSurrogate(c) && text.size() > 1 && IsLowSurrogate(text[1])) {
      out += text.substr(0, 2);
      text.remove_prefix(1);
    } else if (static_cast<char32_t>(c) < U' ' || c == 0x7F || IsHighSurrogate(c) ||
               IsLowSurrogate(c)) {
      AppendCodeUnit(out, c);
    } else {
      out += c;
    }
  }
  out += L'"';
}

// Takes a word off the front, and the white space behind it.
std::wstring_view TakeWord(std::wstring_view& line) {
  std::size_t end = 0;
  while (end < line.size() && !Text::IsSpace(line[end])) ++end;
  const std::wstring_view word = line.substr(0, end);
  line = Text::Trim(line.substr(end));
  return word;
}

}  // namespace

std::wstring SeaText::Write(const Content& content) {
  std::wstring out(kFirstLine);
  out += L'\n';
  for (const auto& [name, lines] : content.lists) {
    out += L"list ";
    AppendQuoted(out, name);
    out += L'\n';
    for (const CResourceEntry& entry : *lines) {
      CString line;
      entry.GetLine(line);
      out += L"  ";
      AppendQuoted(out, line);
      out += L'\n';
    }
  }
  for (const auto& [name, value] : content.bools) {
    out += L"bool ";
    AppendQuoted(out, name);
    out += value ? L" true\n" : L" false\n";
  }
  out += kLastLine;
  out += L'\n';
  return out;
}

std::optional<SeaText::Content> SeaText::Read(std::wstring_view text) {
  while (!text.empty()) {
    const std::size_t end = text.find(L'\n');
    ++line_;
    if (!ReadLine(Text::Trim(text.substr(0, end)))) return std::nullopt;
    text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
  }
  if (place_ != Place::behind) {
    Fail(L"the file has no last line 'end'");
    return std::nullopt;
  }
  return std::move(content_);
}

bool SeaText::ReadLine(std::wstring_view line) {
  if (line.empty() || line.front() == L';') return true;
  if (place_ == Place::before) {
    if (line != kFirstLine) return Fail(L"the file doesn't start with 'sea 1'");
    place_ = Place::inside;
    return true;
  }
  if (place_ == Place::behind) return Fail(L"there is text behind 'end'");
  if (line == kLastLine) {
    place_ = Place::behind;
    return true;
  }
  if (line.front() == L'"') return ReadEntry(line);
  const std::wstring_view word = TakeWord(line);
  if (word == L"list") return ReadList(line);
  if (word == L"bool") return ReadBool(line);
  return Fail(L"the line is none of list, bool, end or a text in quotes");
}

bool SeaText::ReadEntry(std::wstring_view line) {
  std::wstring text;
  if (!list_) return Fail(L"the text stands under no list");
  if (!Quoted(line, text)) return false;
  if (!line.empty()) return Fail(L"there is something behind the closing quote");
  list_->emplace_back().SetSeaLine(text.c_str());
  return true;
}

bool SeaText::ReadList(std::wstring_view rest) {
  std::wstring name;
  if (!Quoted(rest, name)) return false;
  if (!rest.empty()) return Fail(L"there is something behind the closing quote");
  const auto [place, is_new] =
      content_.lists.try_emplace(std::move(name), std::make_shared<CResourceSea::Lines>());
  if (!is_new) return Fail(L"there is a list of that name already");
  list_ = place->second.get();
  return true;
}

bool SeaText::ReadBool(std::wstring_view rest) {
  std::wstring name;
  list_ = nullptr;
  if (!Quoted(rest, name)) return false;
  if (rest != L"true" && rest != L"false") return Fail(L"a boolean is true or false");
  const bool is_new = content_.bools.try_emplace(std::move(name), rest == L"true").second;
  return is_new || Fail(L"there is a boolean of that name already");
}

// Takes a text in quotes off the front, and the white space behind it.
bool SeaText::Quoted(std::wstring_view& rest, std::wstring& text) {
  if (rest.empty() || rest.front() != L'"') return Fail(L"a name in quotes is missing");
  rest.remove_prefix(1);
  while (!rest.empty()) {
    const wchar_t c = rest.front();
    rest.remove_prefix(1);
    if (c == L'"') {
      rest = Text::Trim(rest);
      return true;
    }
    if (c == L'\0') return Fail(L"a text can't hold a zero character");
    if (c != L'\\') {
      text += c;
    } else if (!Escaped(rest, text)) {
      return false;
    }
  }
  return Fail(L"the closing quote is missing");
}

// Takes what follows a backslash off the front.
bool SeaText::Escaped(std::wstring_view& rest, std::wstring& text) {
  if (rest.empty()) return Fail(L"the closing quote is missing");
  const wchar_t letter = rest.front();
  rest.remove_prefix(1);
  for (const auto& [name, meaning] : kEscapes) {
    if (name != letter) continue;
    text += meaning;
    return true;
  }
  if (letter != L'u' || rest.size() < 4) return Fail(L"there is no such escape");
  unsigned unit = 0;
  for (wchar_t c : rest.substr(0, 4)) {
    if (c >= L'A' && c <= L'F') c = static_cast<wchar_t>(c + 32);
    const std::size_t digit = kHexDigits.find(c);
    if (digit == std::wstring_view::npos) return Fail(L"there is no such escape");
    unit = unit * 16 + static_cast<unsigned>(digit);
  }
  if (unit == 0) return Fail(L"a text can't hold a zero character");
  text += static_cast<wchar_t>(unit);
  rest.remove_prefix(4);
  return true;
}

// ---- files ----

namespace {

namespace fs = std::filesystem;

// A name with a zero in it would end there for the system, and be that of another file.
bool NamesAFile(const std::wstring& name) { return name.find(L'\0') == std::wstring::npos; }

fs::path PathOf(const std::wstring& file_name) {
  const std::string utf8 = Text::ToUtf8(file_name);
  return std::u8string(utf8.begin(), utf8.end());
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::optional<std::string> ReadWhole(const fs::path& path) {
  std::error_code ignored;
  if (!fs::is_regular_file(path, ignored)) return std::nullopt;  // a pipe would never end
  const File file(std::fopen(path.c_str(), "rbe"));
  if (!file) return std::nullopt;
  std::string bytes;
  std::array<char, 16384> piece;
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get())) {
    bytes.append(piece.data(), count);
  }
  if (std::ferror(file.get())) return std::nullopt;
  return bytes;
}

// A file that is being written beside the one it is to replace. It vanishes unless it took that
// place.
class Replacement {
 public:
  explicit Replacement(fs::path target) : target_(std::move(target)) {
    // The name is unique among the threads of all processes on this machine; should another
    // machine or a process of the past have left one like it, the next number is taken.
    static std::atomic<unsigned> number = 0;
    for (int attempt = 0; attempt < 100 && !file_; ++attempt) {
      path_ = target_;
      path_ += "." + std::to_string(getpid()) + "-" + std::to_string(number++) + ".new";
      file_.reset(std::fopen(path_.c_str(), "wbxe"));
    }
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement() {
    if (!pending_) return;
    file_.reset();
    std::error_code ignored;
    fs::remove(path_, ignored);
  }

  bool IsOpen() {
    pending_ = static_cast<bool>(file_);
    return pending_;
  }

  // Whether all of it is on the disk.
  bool Write(std::string_view bytes) {
    struct stat old {};
    if (stat(target_.c_str(), &old) == 0) {
      static_cast<void>(fchmod(fileno(file_.get()), old.st_mode & 07777U));  // if it may be kept
    }
    return std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size() &&
           std::fflush(file_.get()) == 0 && fsync(fileno(file_.get())) == 0 &&
           std::fclose(file_.release()) == 0;
  }

  bool TakePlace() {
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error) return false;
    pending_ = false;
    SyncFolder();
    return true;
  }

 private:
  // Makes the new name last. If that fails, a crash may bring back the old file, whole as it was.
  void SyncFolder() const {
    const fs::path folder = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
    const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return;
    static_cast<void>(fsync(handle));
    close(handle);
  }

  fs::path target_;
  fs::path path_;
  File file_;
  bool pending_ = false;
};

// What kept the bytes from the file; null if nothing did.
const wchar_t* ReplaceFile(fs::path target, std::string_view bytes) {
  std::error_code error;
  if (fs::path real = fs::canonical(target, error); !error) target = std::move(real);
  if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
    return L"this is no regular file";
  }
  Replacement replacement(std::move(target));
  if (!replacement.IsOpen()) return L"no new file can be made in its folder";
  if (!replacement.Write(bytes)) return L"the disk is full or can't be written";
  if (!replacement.TakePlace()) return L"the new file can't take its place";
  return nullptr;
}

}  // namespace

bool CResourceSea::Load(const std::wstring& file_name) {
  const auto refuse = [&](int line, const wchar_t* why) {
    PrWin::Output(PrWin::category_data_base, PrWin::style_bad_line,
                  L"CResourceSea::Load(): '%s' is not loaded; line %d: %s\n", file_name.c_str(),
                  line, why);
    return false;
  };
  const std::optional<std::string> bytes =
      NamesAFile(file_name) ? ReadWhole(PathOf(file_name)) : std::nullopt;
  if (!bytes) return refuse(0, L"the file can't be read");

  const std::wstring wide = Text::FromUtf8(*bytes);
  if (Text::ToUtf8(wide) != *bytes) return refuse(0, L"the file is not UTF-8");
  std::wstring_view text = wide;
  if (text.starts_with(L'\xFEFF')) text.remove_prefix(1);

  SeaText reader;
  std::optional<Content> content = reader.Read(text);
  if (!content) return refuse(reader.Line(), reader.Fault());
  content_ = std::move(*content);
  return true;
}

bool CResourceSea::Save(const std::wstring& file_name) const {
  const std::string bytes = Text::ToUtf8(SeaText::Write(content_));
  const wchar_t* const why = NamesAFile(file_name) ? ReplaceFile(PathOf(file_name), bytes)
                                                   : L"a file name can't hold a zero character";
  if (!why) return true;
  PrWin::Output(PrWin::category_data_base, PrWin::style_bad_line,
                L"CResourceSea::Save(): '%s' is not saved: %s\n", file_name.c_str(), why);
  return false;
}

// ---- the sea in memory ----

void CResourceEntry::GetLine(CString& text) const { text = text_; }

void CResourceEntry::SetSeaLine(const wchar_t* text) { text_ = NameOf(text); }

bool CResourceSea::IsListEntry(const wchar_t* name) const {
  return content_.lists.contains(NameOf(name));
}

bool CResourceSea::LookupGetBool(const wchar_t* key, unsigned int, bool default_value) const {
  const auto found = content_.bools.find(NameOf(key));
  return found == content_.bools.end() ? default_value : found->second;
}

lookup::result CResourceSea::LookupBool(int access, const wchar_t* key, bool& value, unsigned int) {
  if (access == lookup::access_store) {
    content_.bools.insert_or_assign(std::wstring(NameOf(key)), value);
    return lookup::result::found;
  }
  if (access != lookup::access_read) return lookup::result::bad_access;
  const auto found = content_.bools.find(NameOf(key));
  if (found == content_.bools.end()) return lookup::result::missing;
  value = found->second;
  return lookup::result::found;
}

CResourceList::CResourceList(const CResourceSea* sea, const wchar_t* name) : writable_(false) {
  if (!sea) return;
  const auto found = sea->content_.lists.find(NameOf(name));
  if (found != sea->content_.lists.end()) lines_ = found->second;
}

CResourceList::CResourceList(CResourceSea* sea, const wchar_t* name) : writable_(true) {
  if (!sea) {
    lines_ = std::make_shared<CResourceSea::Lines>();
    return;
  }
  std::shared_ptr<CResourceSea::Lines>& lines = sea->content_.lists[std::wstring(NameOf(name))];
  if (!lines) lines = std::make_shared<CResourceSea::Lines>();
  lines_ = lines;
}

bool CResourceList::GotoHead() {
  current_ = 0;
  return IsValid();
}

bool CResourceList::GotoNext() {
  if (IsValid()) ++current_;
  return IsValid();
}

bool CResourceList::IsValid() const { return lines_ && current_ < lines_->size(); }

CResourceEntry* CResourceList::GetCurrentLine() const {
  return IsValid() ? &(*lines_)[current_] : nullptr;
}

CResourceEntry* CResourceList::AddLineTail() {
  return writable_ ? &lines_->emplace_back() : nullptr;
}

void CResourceList::RemoveAll() {
  if (!writable_) return;
  lines_->clear();
  current_ = 0;
}

// ---- the seas of the process ----

namespace {

struct Seas {
  CResourceSea application_from_start;
  CResourceSea messages_from_start;
  std::atomic<CResourceSea*> application = &application_from_start;
  std::atomic<CResourceSea*> messages = &messages_from_start;
};

// Never destroyed: the store lives to process end and keeps a pointer to its sea.
Seas& ProcessSeas() {
  static auto* const seas = new Seas;
  return *seas;
}

}  // namespace

CResourceSea* CSeaBase::ApplicationSea() { return ProcessSeas().application; }

CResourceSea* CSeaBase::MessagesSea() { return ProcessSeas().messages; }

CResourceSea* CSeaBase::SetApplicationSea(CResourceSea* sea) {
  return ProcessSeas().application.exchange(sea);
}

CResourceSea* CSeaBase::SetMessagesSea(CResourceSea* sea) {
  Seas& seas = ProcessSeas();
  return seas.messages.exchange(sea ? sea : &seas.messages_from_start);
}
