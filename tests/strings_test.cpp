// The texts that users read: complete and sound in every language, in the language they asked for.
#include <cstdio>
#include <regex>

#include "frame/strings/DialogTemplates.h"
#include "frame/strings/EmbeddedTexts.h"
#include "frame/strings/ModuleStrings.h"
#include "frame/strings/TextCatalogue.h"
#include "interfaces/windows/Dialog3d.h"
#include "support.h"

namespace {

using Texts = std::map<int, CString>;

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

// The first ids of the lists in which a user sees the texts side by side.
constexpr int lists[] = {7, 100, 200, 250, 290, 300, 400, 500};

// A translation is complete, keeps what programs read, is a translation, and leaves no two entries
// of a list that a user could not tell apart.
TEST(Strings, TranslationsAreCompleteAndSound) {
  ASSERT_EQ(Languages().size(), 11U);
  const Texts english = TextsOf(*FindLanguage("en"));
  EXPECT_EQ(english.size(), 96U);
  for (const Language& language : Languages()) {
    SCOPED_TRACE(language.tag);
    const Texts texts = TextsOf(language);
    ASSERT_EQ(texts.size(), english.size());
    int same = 0;
    std::map<std::pair<const int*, CString>, int> seen;
    for (const auto& [id, text] : texts) {
      ASSERT_TRUE(english.contains(id)) << id;
      same += text == english.at(id);
      EXPECT_FALSE(text.empty()) << id;
      EXPECT_EQ(Fixed(text), Fixed(english.at(id))) << id;
      const auto* const list = std::ranges::upper_bound(lists, id);
      EXPECT_TRUE(seen.emplace(std::pair(list, text), id).second) << id << " reads as another";
    }
    const bool is_english = language.id == 9 || language.id == 2048;
    EXPECT_TRUE(is_english ? same == 96 : same <= 24) << same;
  }
}

TEST(Strings, FilesHoldNoDamagedText) {
  for (const EmbeddedText& file : EmbeddedTexts()) {
    const CString wide = Text::FromUtf8(file.text);
    EXPECT_EQ(Text::ToUtf8(wide), file.text) << file.name;
    EXPECT_EQ(wide.find_first_of(L"\uFFFD?\r\uFEFFÃ\u00C2"), CString::npos) << file.name;
  }
}

// The environment is read once in a process, so each case has one of its own. The statement of the
// test prints the language that it found, and ends.
using StringsDeathTest = testing::Test;

TEST(StringsDeathTest, FirstTextFollowsTheEnvironment) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const char* const none = nullptr;
  const std::array<const char*, 4> cases[] = {{none, none, "hu_HU.UTF-8", "Szakasz"},
                                              {none, "it_CH", "hu_HU", "Sezione"},
                                              {"ro", "it_CH", "hu_HU", "Sec.*iune"},
                                              {"", "", "cs", "Sekce"},
                                              {"sv_SE", "it", "it", "Section"}};
  for (const auto& [all, messages, lang, text] : cases) {
    const std::pair<const char*, const char*> environment[] = {
        {"LC_ALL", all}, {"LC_MESSAGES", messages}, {"LANG", lang}};
    const auto say = [&] {
      for (const auto& [name, value] : environment) {
        value ? setenv(name, value, 1) : unsetenv(name);
      }
      std::fputs((Text::ToUtf8(LoadModuleString(StringId::section)) + '\n').c_str(), stderr);
      std::exit(0);
    };
    EXPECT_EXIT(say(), testing::ExitedWithCode(0), std::string("^") + text + "\n$");
  }
}

TEST(StringsDeathTest, TraceTellsWhenTheLibraryComesAndGoes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  setenv("KESTRIN_TRACE", "1", 1);
  EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0),
              "^lKestrinDb.dll Initializing.\n(.*\n)?lKestrinDb.dll Terminating.\n$");
  unsetenv("KESTRIN_TRACE");
}

TEST(Strings, ADialogSpeaksOneLanguage) {
  const std::tuple<const char*, CString, CString> cases[] = {
      {"de", L"Schlüssel-Spezifikation", L"Abbruch"}, {"es", L"Key Specification", L"Cancel"}};
  for (const auto& [tag, title, cancel] : cases) {
    SetUserLanguage(tag);
    const DialogTemplate* const dialog = LibraryResources().FindDialog(3002);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->title, title);
    EXPECT_NE(std::ranges::find(dialog->items, cancel, &DialogItem::text), dialog->items.end());
  }
  EXPECT_EQ(LibraryResources().FindDialog(3001), nullptr);
}

// A slip of a translator's pen costs one line.
TEST(Strings, BadLinesOfAFileCostOnlyThemselves) {
  const TextCatalogue texts(
      "8\tsecond\r\n7\t first \nno tab\n9 blank\n\tno id\nx1\tno number\n99999999999\tfar\n"
      "[dialog]\n10\t\n8\tagain\n[dialog 5]\n7\tbutton\n[dialog x]\n8\tlast");
  const std::tuple<int, int, CString> cases[] = {{0, 7, L"first"},  {0, 8, L"second"},
                                                 {0, 9, L"(none)"}, {5, 7, L"button"},
                                                 {5, 8, L"last"},   {6, 7, L"(none)"}};
  for (const auto& [group, id, expected] : cases) {
    const CString* const text = texts.Find(group, id);
    EXPECT_EQ(text ? *text : L"(none)", expected) << group << ' ' << id;
  }
}

}  // namespace
