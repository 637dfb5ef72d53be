// How a user's wish becomes one of the languages that the library has, and an id its text.
#include "frame/strings/ModuleStrings.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>

#include "frame/strings/TextCatalogue.h"

using namespace kestrin;

namespace {

constexpr std::array languages{
    Language{9, "en", L"English"},
    Language{22, "pt", L"Português"},
    Language{1029, "cs", L"Čeština"},
    Language{1031, "de", L"Deutsch"},
    Language{1036, "fr", L"Français"},
    Language{1038, "hu", L"Magyar"},
    Language{1040, "it", L"Italiano"},
    Language{1048, "ro", L"Română"},
    Language{2048, "default", L"System default"},
    Language{2052, "zh-CN", L"简体中文"},
    Language{3082, "es", L"Español"},
};
constexpr const Language& english = languages.front();

template <class Test>
const Language* FirstThat(const Test& test) {
  const auto found = std::find_if(languages.begin(), languages.end(), test);
  return found == languages.end() ? nullptr : &*found;
}

// A language number holds the language in its low 10 bits and the region above.
constexpr int LanguagePart(int id) { return id & 0x3FF; }

std::string_view LanguagePart(std::string_view tag) {
  return tag.substr(0, tag.find_first_of("-_"));
}

// Tags are ASCII; the two separators, of tags and of locale names, count as one.
bool SameTag(std::string_view a, std::string_view b) {
  const auto fold = [](char c) { return c == '_' ? '-' : Text::Lower(c); };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [fold](char x, char y) { return fold(x) == fold(y); });
}

const Language& OrEnglish(const Language* language) { return language ? *language : english; }

// "C" and "POSIX" are no languages and so come out as English.
const Language& LanguageOfEnvironment() {
  for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value && *value) return OrEnglish(FindLanguage(value));
  }
  return english;
}

std::atomic<const Language*> user_language = nullptr;  // null: nobody has asked or set it yet

const Language& Set(const Language& language) {
  user_language = &language;
  return language;
}

}  // namespace

namespace kestrin {

std::span<const Language> Languages() { return languages; }

const Language* FindLanguage(int id) {
  if (const Language* const exact = FirstThat([id](const Language& l) { return l.id == id; })) {
    return exact;
  }
  if (id <= 0 || id > 0xFFFF) return nullptr;
  return FirstThat([id](const Language& l) { return LanguagePart(l.id) == LanguagePart(id); });
}

const Language* FindLanguage(std::string_view tag) {
  tag = tag.substr(0, tag.find_first_of(".@"));  // without encoding and variant
  if (const Language* const exact =
          FirstThat([tag](const Language& l) { return SameTag(l.tag, tag); })) {
    return exact;
  }
  return FirstThat(
      [tag](const Language& l) { return SameTag(LanguagePart(l.tag), LanguagePart(tag)); });
}

const Language& UserLanguage() {
  const Language* now = user_language;
  if (now) return *now;
  const Language& found = LanguageOfEnvironment();
  // A language that a host has set in the meantime stays.
  return user_language.compare_exchange_strong(now, &found) ? found : *now;
}

const Language& SetUserLanguage(int id) { return Set(OrEnglish(FindLanguage(id))); }
const Language& SetUserLanguage(std::string_view tag) { return Set(OrEnglish(FindLanguage(tag))); }

std::optional<CString> FindModuleString(int id) { return FindModuleString(id, UserLanguage()); }

std::optional<CString> FindModuleString(int id, const Language& language) {
  const TextCatalogue& texts = TextCatalogue::Of(language);
  const CString* const text = texts.Find(TextCatalogue::string_table, id);
  return text ? std::optional(*text) : std::nullopt;
}

}  // namespace kestrin

CString LoadModuleString(int id) { return FindModuleString(id).value_or(CString()); }

CString CLibMgr::LoadStringW(unsigned int id) const {
  if (module_ != ModuleHandle::lKestrinDb) return {};
  return LoadModuleString(static_cast<int>(id));
}
