#include "interfaces/sea/ResourceSea.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cwchar>
#include <optional>
#include <utility>

#include "interfaces/sea/PrWin.h"
#include "interfaces/text/File.h"
#include "interfaces/text/Utf.h"

using namespace kestrin;

namespace {

std::wstring_view NameOf(const wchar_t* name) { return name ? name : L""; }

constexpr std::wstring_view first_line = L"sea 2";
constexpr std::wstring_view last_line = L"end";

void AppendLine(std::wstring& out, std::wstring_view word, std::wstring_view text) {
  out.append(word).append(text.empty() ? L"" : L" ");
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<char32_t>(text[i]);
    const bool is_white_end = (i == 0 || i + 1 == text.size()) && Text::IsSpace(text[i]);
    if (c < U' ' || c == U'\\' || c == 0x7F || Utf::IsHigh(c) || Utf::IsLow(c) || is_white_end) {
      std::array<wchar_t, 6> escape;
      std::swprintf(escape.data(), escape.size(), L"\\%04x", static_cast<unsigned>(c));
      out += escape.data();
    } else {
      out += text[i];
    }
  }
  out += L'\n';
}

// Nothing if a backslash stands for no character.
std::optional<std::wstring> Unescaped(std::wstring_view text) {
  std::wstring plain;
  for (std::size_t at = 0; (at = text.find(L'\\')) != text.npos; text.remove_prefix(at + 5)) {
    const std::string digits = Text::ToUtf8(text.substr(at + 1, 4));
    unsigned unit = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
    if (end != digits.data() + 4 || unit == 0) return std::nullopt;
    plain.append(text.substr(0, at)) += static_cast<wchar_t>(unit);
  }
  return plain.append(text);
}

bool Log(const std::wstring& what) {
  const std::wstring text = L"CResourceSea::" + what + L"\n";
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_bad_line);
  return false;
}

}  // namespace

struct CResourceSea::Reader {
  // Takes the next line, without white space at its ends. Null, or what is wrong with it.
  const wchar_t* Take(std::wstring_view line) {
    if (++number == 1) return line == first_line ? nullptr : L"it is not 'sea 2'";
    if (line.empty() || line.front() == L';') return nullptr;
    if (has_ended) return L"it stands behind 'end'";
    const auto space = std::find_if(line.begin(), line.end(), Text::IsSpace) - line.begin();
    const std::wstring_view word = line.substr(0, static_cast<std::size_t>(space));
    const auto text = Unescaped(Text::Trim(line.substr(word.size())));
    if (!text) return L"a backslash needs four hexadecimal digits behind it, not all of them 0";
    if (word == L"list") {
      list = content.List(*text).get();
    } else if (word == L"-" && list) {
      list->emplace_back().SetSeaLine(text->c_str());
    } else if (word == L"true" || word == L"false") {
      content.bools[*text] = word == L"true";
    } else if (line == last_line) {
      has_ended = true;
    } else {
      return L"it is no list, line of a list, true, false or end";
    }
    return nullptr;
  }

  Content content;
  Lines* list = nullptr;  // the one that is being read
  int number = 0;
  bool has_ended = false;
};

bool CResourceSea::Load(const std::wstring& file_name) try {
  const std::string bytes = ReadFile(file_name);
  const std::wstring wide = Text::FromUtf8(bytes);
  const bool is_text = Text::ToUtf8(wide) == bytes && wide.find(L'\0') == wide.npos;
  std::wstring_view rest = wide;
  if (rest.starts_with(L'\xFEFF')) rest.remove_prefix(1);

  Reader reader;
  const wchar_t* fault = is_text ? nullptr : L"the file is no UTF-8 text";
  while (!fault && !rest.empty()) {
    const std::wstring_view line = rest.substr(0, rest.find(L'\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    fault = reader.Take(Text::Trim(line));
  }
  if (!fault && !reader.has_ended) fault = L"the last line 'end' is missing";
  if (fault) {
    return Log(L"Load(): '" + file_name + L"', line " + std::to_wstring(reader.number) + L": " +
               fault);
  }
  content_ = std::move(reader.content);
  return true;
} catch (const CFileException& failure) {
  return Log(L"Load(): " + Text::FromUtf8(failure.what()));
}

bool CResourceSea::Save(const std::wstring& file_name) const try {
  std::wstring text;
  AppendLine(text, first_line, {});
  for (const auto& [name, lines] : content_.lists) {
    AppendLine(text, L"list", name);
    for (const CResourceEntry& entry : *lines) AppendLine(text, L"-", entry.text_);
  }
  for (const auto& [name, value] : content_.bools) {
    AppendLine(text, value ? L"true" : L"false", name);
  }
  AppendLine(text, last_line, {});
  ReplaceFile(file_name, Text::ToUtf8(text));
  return true;
} catch (const CFileException& failure) {
  return Log(L"Save(): " + Text::FromUtf8(failure.what()));
}

const std::shared_ptr<CResourceSea::Lines>& CResourceSea::Content::List(std::wstring_view name) {
  return lists.try_emplace(std::wstring(name), std::make_shared<Lines>()).first->second;
}

void CResourceEntry::SetSeaLine(const wchar_t* text) { text_ = NameOf(text); }

bool CResourceSea::IsListEntry(const wchar_t* name) const {
  return content_.lists.contains(NameOf(name));
}

bool CResourceSea::LookupGetBool(const wchar_t* key, unsigned int, bool default_value) const {
  const auto found = content_.bools.find(NameOf(key));
  return found == content_.bools.end() ? default_value : found->second;
}

lookup::result CResourceSea::LookupBool(int access, const wchar_t* key, bool& value, unsigned int) {
  const std::wstring name(NameOf(key));
  if (access == lookup::access_store) content_.bools[name] = value;
  const auto found = content_.bools.find(name);
  if (found == content_.bools.end()) return lookup::result::missing;
  value = found->second;
  return lookup::result::found;
}

CResourceList::CResourceList(const CResourceSea* sea, const wchar_t* name) : writable_(false) {
  if (!sea) return;
  const auto found = sea->content_.lists.find(NameOf(name));
  if (found != sea->content_.lists.end()) lines_ = found->second;
}

CResourceList::CResourceList(CResourceSea* sea, const wchar_t* name)
    : lines_(sea ? sea->content_.List(NameOf(name)) : std::make_shared<CResourceSea::Lines>()),
      writable_(true) {}

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

namespace {

struct Seas {
  CResourceSea from_start[2];
  std::atomic<CResourceSea*> application = &from_start[0];
  std::atomic<CResourceSea*> messages = &from_start[1];
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
  return seas.messages.exchange(sea ? sea : &seas.from_start[1]);
}
