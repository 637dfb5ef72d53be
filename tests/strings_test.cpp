// The texts that users read: complete and sound in every language, in the language they asked for.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "frame/DialogTemplates.h"
#include "frame/ModuleStrings.h"
#include "frame/strings/EmbeddedTexts.h"
#include "frame/strings/TextCatalogue.h"
#include "interfaces/Dialog3d.h"
#include "interfaces/Text.h"

namespace {

using Texts = std::map<int, CString>;

const Language& Get(std::string_view tag) { return *FindLanguage(tag); }

Texts TextsOf(const Language& language) {
  Texts texts;
  for (int id = -100; id <= 4000; ++id) {
    if (auto text = FindModuleString(id, language)) texts.emplace(id, *text);
  }
  return texts;
}

// What a program reads and a translator must not touch: numbers and percent forms, in their order.
std::vector<std::string> Fixed(const CString& text) {
  static const std::regex form("[0-9]+|%[-+ #0-9.]*[a-zA-Z]|%");
  const std::string bytes = Text::ToUtf8(text);
  return {std::sregex_token_iterator(bytes.begin(), bytes.end(), form), {}};
}

TEST(Strings, EveryLanguageHasTheIdsOfTheTable) {
  std::set<int> expected{7, 8, 9, 99};
  for (const auto& [first, last] : {std::pair{11, 17},
                                    {100, 142},
                                    {200, 206},
                                    {250, 253},
                                    {290, 294},
                                    {300, 308},
                                    {400, 404},
                                    {500, 511}}) {
    for (int id = first; id <= last; ++id) expected.insert(id);
  }
  ASSERT_EQ(expected.size(), 96U);
  ASSERT_EQ(Languages().size(), 11U);
  for (const Language& language : Languages()) {
    std::set<int> ids;
    for (const auto& [id, text] : TextsOf(language)) ids.insert(id);
    EXPECT_EQ(ids, expected) << language.tag;
  }
}

// A translation keeps what programs read, is a translation, and leaves no two entries of a list
// that a user could not tell apart.
TEST(Strings, TranslationsAreSound) {
  constexpr std::array lists{std::pair{7, 99},    std::pair{100, 142}, std::pair{200, 206},
                             std::pair{250, 253}, std::pair{290, 294}, std::pair{300, 308},
                             std::pair{400, 404}, std::pair{500, 511}};
  const Texts english = TextsOf(Get("en"));
  for (const Language& language : Languages()) {
    const Texts texts = TextsOf(language);
    int same = 0;
    for (const auto& [id, text] : texts) {
      EXPECT_FALSE(text.empty()) << language.tag << ' ' << id;
      EXPECT_EQ(Fixed(text), Fixed(english.at(id))) << language.tag << ' ' << id;
      same += text == english.at(id);
    }
    const bool is_english = language.id == 9 || language.id == 2048;
    EXPECT_EQ(same == 96, is_english) << language.tag;
    EXPECT_LE(same, is_english ? 96 : 24) << language.tag;
    for (const auto& [first, last] : lists) {
      std::map<CString, int> seen;
      for (auto it = texts.lower_bound(first); it != texts.upper_bound(last); ++it) {
        const auto [other, is_new] = seen.emplace(it->second, it->first);
        EXPECT_TRUE(is_new) << language.tag << ' ' << it->first << " reads as " << other->second;
      }
    }
  }
}

TEST(Strings, FilesCanBeReadAndHoldNoDamagedText) {
  static const std::regex line_form("#.*|[0-9]+\t\\S(.*\\S)?|\\[dialog [0-9]+\\]|");
  for (const EmbeddedText& file : EmbeddedTexts()) {
    const bool is_layout = file.name.starts_with("dialog");
    const CString wide = Text::FromUtf8(file.text);
    EXPECT_EQ(Text::ToUtf8(wide), file.text) << file.name;
    for (const wchar_t bad : {L'�', L'?', L'\r', L'\uFEFF', L'Ã', L'\u00C2'}) {
      EXPECT_EQ(wide.find(bad), CString::npos) << file.name << ": " << static_cast<unsigned>(bad);
    }
    int number = 0;
    std::set<std::pair<int, int>> ids;
    int group = 0;
    for (std::string_view rest = file.text; !rest.empty(); ++number) {
      const std::string line(rest.substr(0, rest.find('\n')));
      rest.remove_prefix(std::min(line.size() + 1, rest.size()));
      EXPECT_TRUE(is_layout || std::regex_match(line, line_form)) << file.name << ':' << number + 1;
      if (line.starts_with('[')) group = 1;
      if (line.empty() || line[0] < '0' || line[0] > '9') continue;
      EXPECT_TRUE(ids.emplace(group, std::atoi(line.c_str())).second)
          << file.name << ':' << number + 1 << " has an id for the second time";
    }
  }
}

TEST(Strings, TextsAsEngineersOfTheLanguageReadThem) {
  struct Case {
    const char* tag;
    int id;
    const wchar_t* text;
  };
  constexpr std::array cases{
      Case{"en", 9, L"(not assigned)"},       Case{"en", 404, L"Rel.Magn."},
      Case{"en", 507, L"RMS below"},          Case{"de", 11, L"alle Prüfschritte"},
      Case{"de", 132, L"Wälzprüfung"},        Case{"fr", 13, L"toutes les voies"},
      Case{"cs", 134, L"Vyhodnocení řazení"}, Case{"hu", 13, L"minden csatorna"},
      Case{"it", 16, L"tutti i sensori"},     Case{"ro", 142, L"Mod poligon"},
      Case{"pt", 115, L"Desvio padrão"},      Case{"zh-CN", 13, L"所有通道"},
      Case{"es", 252, L"Cuantil 95\u00A0%"},  Case{"default", 100, L"Calculation"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FindModuleString(c.id, Get(c.tag)), c.text) << c.tag << ' ' << c.id;
    SetUserLanguage(c.tag);
    EXPECT_EQ(LoadModuleString(c.id), c.text);
    EXPECT_EQ(CLibMgr(ModuleHandle::lKestrinDb).LoadStringW(static_cast<unsigned>(c.id)), c.text);
    EXPECT_EQ(CLibMgr(ModuleHandle::none).LoadStringW(static_cast<unsigned>(c.id)), L"");
    for (const int missing : {0, -1, 10, 18, 143, 3002, INT_MAX, INT_MIN}) {
      EXPECT_EQ(FindModuleString(missing), std::nullopt) << missing;
      EXPECT_EQ(LoadModuleString(missing), L"") << missing;
    }
  }
}

TEST(Strings, FallFromRegionToLanguageToEnglish) {
  constexpr std::pair<const char*, int> tags[] = {
      {"de", 1031},
      {"de_AT.UTF-8", 1031},
      {"DE-ch", 1031},
      {"de@euro", 1031},
      {"pt_BR", 22},
      {"zh_CN.GB18030", 2052},
      {"zh-Hant-TW", 2052},
      {"zh", 2052},
      {"es_419", 3082},
      {"default", 2048},
      {"en_GB", 9},
      {"C", 9},
      {"C.UTF-8", 9},
      {"POSIX", 9},
      {"", 9},
      {"sv_SE", 9},
      {"d", 9},
      {"deu", 9},
      {"_", 9},
      {".", 9},
  };
  for (const auto& [tag, id] : tags) EXPECT_EQ(SetUserLanguage(tag).id, id) << tag;
  constexpr std::pair<int, int> ids[] = {
      {1031, 1031}, {3079, 1031}, {7, 1031},        {1033, 9}, {1046, 22},
      {1028, 2052}, {2048, 2048}, {2058, 3082},     {1053, 9}, {0, 9},
      {-1, 9},      {INT_MAX, 9}, {INT_MIN + 7, 9},
  };
  for (const auto& [wish, id] : ids) {
    EXPECT_EQ(SetUserLanguage(wish).id, id) << wish;
    EXPECT_EQ(UserLanguage().id, id) << wish;
  }
  EXPECT_EQ(FindLanguage("sv_SE"), nullptr);
  EXPECT_EQ(FindLanguage(1053), nullptr);
}

// The environment is read once in a process, so each case has one of its own. The statement of the
// test prints the language that it found, and ends.
using StringsDeathTest = testing::Test;

TEST(StringsDeathTest, FirstTextFollowsTheEnvironment) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  struct Case {
    const char* all;
    const char* messages;
    const char* lang;
    const char* text;
  };
  constexpr std::array cases{
      Case{nullptr, nullptr, "hu_HU.UTF-8", "Szakasz"},
      Case{nullptr, "it_CH", "hu_HU", "Sezione"},
      Case{"ro", "it_CH", "hu_HU", "Sec.*iune"},
      Case{"", "", "cs", "Sekce"},
      Case{"C", "it", "it", "Section"},
      Case{nullptr, nullptr, nullptr, "Section"},
      Case{"sv_SE", "it", "it", "Section"},
  };
  const auto set = [](const char* name, const char* value) {
    return value ? setenv(name, value, 1) : unsetenv(name);
  };
  for (const Case& c : cases) {
    const auto say = [&] {
      set("LC_ALL", c.all);
      set("LC_MESSAGES", c.messages);
      set("LANG", c.lang);
      std::fputs((Text::ToUtf8(LoadModuleString(StringId::section)) + '\n').c_str(), stderr);
      std::exit(0);
    };
    EXPECT_EXIT(say(), testing::ExitedWithCode(0), std::string("^") + c.text + "\n$");
  }
}

TEST(StringsDeathTest, TraceTellsWhenTheLibraryComesAndGoes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  setenv("KESTRIN_TRACE", "1", 1);
  EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0),
              "^lKestrinDb.dll Initializing.\n(.*\n)?lKestrinDb.dll Terminating.\n$");
  unsetenv("KESTRIN_TRACE");
}

TEST(Strings, LanguageChangesWhileThreadsRead) {
  SetUserLanguage("en");
  std::atomic<int> bad = 0;
  const auto read = [&] {
    for (int n = 0; n < 5000; ++n) {
      const CString text = LoadModuleString(StringId::value);
      bad += text != L"Value" && text != L"Wert";
    }
  };
  std::array<std::thread, 4> readers;
  for (std::thread& reader : readers) reader = std::thread(read);
  for (int n = 0; n < 2000; ++n) SetUserLanguage(n % 2 ? "de" : "en");
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(bad, 0);
}

TEST(Strings, KeyDialogStandsCompleteInItsLanguages) {
  constexpr std::array<std::array<const wchar_t*, 3>, 3> texts{{
      {L"Key Specification", L"OK", L"Cancel"},
      {L"Schlüssel-Spezifikation", L"OK", L"Abbruch"},
      {L"Spécification de la clé", L"OK", L"Annuler"},
  }};
  const std::map<std::string_view, std::size_t> other{{"de", 1}, {"hu", 1}, {"ro", 1}, {"fr", 2}};
  for (const Language& language : Languages()) {
    SetUserLanguage(language.id);
    const DialogTemplate* const dialog = LibraryResources().FindDialog(3002);
    ASSERT_NE(dialog, nullptr) << language.tag;
    const auto found = other.find(language.tag);
    const auto& expected = texts[found == other.end() ? 0 : found->second];
    EXPECT_EQ(dialog->title, expected[0]) << language.tag;
    EXPECT_EQ(dialog->font, L"MS Shell Dlg");
    EXPECT_EQ(dialog->font_size, 8);
    ASSERT_EQ(dialog->items.size(), 3U);
    EXPECT_EQ(std::pair(dialog->width, dialog->height), std::pair(168, 110));
    using Kind = DialogItem::Kind;
    const std::tuple<int, Kind, int, int, int, int> items[] = {
        {1, Kind::default_button, 111, 89, 50, 14},
        {2, Kind::button, 7, 89, 50, 14},
        {3000, Kind::list, 7, 7, 154, 77}};
    for (const DialogItem& item : dialog->items) {
      EXPECT_EQ(item.text, item.id == 3000 ? L"" : expected[static_cast<std::size_t>(item.id)]);
      const std::tuple drawn(item.id, item.kind, item.area.left, item.area.top, item.area.Width(),
                             item.area.Height());
      EXPECT_NE(std::find(std::begin(items), std::end(items), drawn), std::end(items)) << item.id;
    }
  }
  EXPECT_EQ(LibraryResources().FindDialog(3001), nullptr);
  EXPECT_EQ(LibraryResources().FindDialog(UINT_MAX), nullptr);
}

// A slip of a translator's pen costs one line.
TEST(Strings, BadLinesOfAFileCostOnlyThemselves) {
  const TextCatalogue texts(
      "8\tsecond\r\n7\t first \nno tab\n9 blank\n\tno id\nx1\tno number\n99999999999\tfar\n"
      "[dialog]\n10\t\n8\tagain\n[dialog 5]\n7\tbutton\n[dialog x]\n8\tlast");
  const auto find = [&](int group, int id) {
    const auto* const text = texts.Find(group, id);
    return text ? *text : L"(none)";
  };
  EXPECT_EQ(find(0, 7), L"first");
  EXPECT_EQ(find(0, 8), L"second");
  EXPECT_EQ(find(0, 9), L"(none)");
  EXPECT_EQ(find(5, 7), L"button");
  EXPECT_EQ(find(5, 8), L"last");
  EXPECT_EQ(find(6, 7), L"(none)");
}

}  // namespace
