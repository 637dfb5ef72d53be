// Keys and types as people read them in dialogs, logs and lists.

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "interfaces/ComboBoxX.h"
#include "test_store.h"

namespace {

using testing_support::TestStore;
using Params = CQtParamInstance;

const char* const names =
    "<TMode>: {\n1 Run\n}\n"
    "<TInstrument>: {\n10 Level\n11 Spectrum\n}\n"
    "<TChannel>: {\n1 Raw\n2 Sync\n}\n"
    "<TLocation>: {\n3 Main\n4 Other\n5 Third\n}\n"
    "<TInstrumentParam>: {\n100 10 RMS\n110 11 H1\n111 11 H2\n}\n"
    "<TApplicationSignal>: {\n7 Speed\n}\n"
    "<TLocationProperty>: {\n3 4\n4 3\n}\n"
    "<TChannelProperty>: {\n1 4\n2 1\n}\n";

const QClavis known(1, 10, 1, 3, 100, 7);
const QClavis unknown(9, 9, 9, 9, 9, 9);
const QClavis extreme(INT_MIN, INT_MAX, 0, INT_MIN, INT_MAX, INT_MIN);

TEST(KeyText, ShowsChosenElementsAndTheirIds) {
  struct Case {
    QClavis key;
    Params::show_id_t show;
    unsigned long mask;
    const wchar_t* text;
  };
  constexpr auto never = Params::show_id_never;
  constexpr auto always = Params::show_id_always;
  constexpr auto if_no_name = Params::show_id_if_no_name;
  const Case cases[] = {
      {known, never, 0x3F, L"Run / Level / Raw / Main / RMS / Speed"},
      {known, always, 0x3F, L"Run [1] / Level [10] / Raw [1] / Main [3] / RMS [100] / Speed [7]"},
      {known, if_no_name, 0x3F, L"Run / Level / Raw / Main / RMS / Speed"},
      {known, always, 0, L""},
      {known, never, 0x21, L"Run / Speed"},
      {known, always, 0x08, L"Main [3]"},
      {unknown, never, 0x3F, L""},  // empty in front: no separator at all
      {unknown, always, 0x3F, L"[9] / [9] / [9] / [9] / [9] / [9]"},
      {unknown, if_no_name, 0x3F, L"[9] / [9] / [9] / [9] / [9] / [9]"},
      {QClavis(1, 9, 9, 9, 9, 7), never, 0x23, L"Run /  / Speed"},
      {QClavis(9, 10, 9, 9, 9, 9), never, 0x23, L"Level / "},
      {QClavis(1, -1, 9, -1, 100, -1), if_no_name, 0x3F,
       L"Run / (Nil) / [9] / (Nil) / RMS / (Nil)"},
      {QClavis(), never, 0x3F, L"(Nil) / (Nil) / (Nil) / (Nil) / (Nil) / (Nil)"},
      {QClavis(), always, 0x3F,
       L"(Nil) [-1] / (Nil) [-1] / (Nil) [-1] / (Nil) [-1] / (Nil) [-1] / (Nil) [-1]"},
      {extreme, always, 0x3F,
       L"[-2147483648] / [2147483647] / [0] / [-2147483648] / [2147483647] / [-2147483648]"}};
  const TestStore data(names);
  for (const Case& c : cases) {
    EXPECT_EQ(data.params.FormatClavisText(c.key, c.show, c.mask), c.text);
    EXPECT_EQ(data.params.FormatClavisText(CClavis(c.key.id), c.show, c.mask), c.text);
  }
}

TEST(KeyText, FollowsTheSettingForDialogs) {
  const TestStore data(names);
  const QClavis key(1, 9, -1, -1, -1, -1);
  Params::ShowIdsInDialogs(true);
  EXPECT_EQ(data.params.FormatClavisText(key, 3), L"Run [1] / [9]");
  Params::ShowIdsInDialogs(false);
  EXPECT_EQ(data.params.FormatClavisText(key, 3), L"Run / [9]");
  EXPECT_EQ(data.params.FormatClavisText(CClavis(key.id), 3), L"Run / [9]");
}

TEST(InstrumentText, ShowsTheParameterOnlyWhereThereAreSeveral) {
  struct Case {
    int instrument, parameter;
    const wchar_t* text;
  };
  const Case cases[] = {{10, 100, L"Level"},
                        {10, 110, L"Level"},
                        {11, 110, L"Spectrum H1"},
                        {11, 9, L"Spectrum "},
                        {-1, 111, L"Spectrum H2"},
                        {-1, 100, L"Level"},
                        {-1, -1, L""},
                        {9, 110, L""},
                        {INT_MAX, INT_MIN, L""}};
  const TestStore data(names);
  for (const Case& c : cases) {
    CString text = L"old";
    const wchar_t* const given = data.params.FormatInstrParamText(text, c.instrument, c.parameter);
    EXPECT_EQ(given, text.c_str());
    EXPECT_EQ(text, c.text) << c.instrument << ' ' << c.parameter;
    const QClavis key(1, c.instrument, 1, 1, c.parameter, 1);
    EXPECT_STREQ(data.params.FormatInstrParamText(text, key), c.text);
  }
}

TEST(PlaceText, ShowsWhatTellsTheChannelFromOthersOfItsKind) {
  struct Case {
    const char* properties;  // of channels
    int location, channel;
    const wchar_t* text;
  };
  const Case cases[] = {{"1 4\n2 4", 3, 1, L"Main (Raw)"},
                        {"1 0\n2 0", 3, 1, L"Main (Raw)"},
                        {"1 6\n2 6", 4, 1, L"Other (Raw)"},
                        {"1 4\n2 1", 3, 1, L"Main"},   // the object's flag 4
                        {"1 4\n2 1", 4, 1, L"Raw"},    // other flags
                        {"1 4\n2 6", 5, 1, L"Third"},  // no properties
                        {"1 0\n2 1", 4, 1, L"Raw"},
                        {"2 1", 4, 1, L"Raw"},  // a channel without properties has type 0
                        {"2 0\n3 0", 4, 1, L"Other (Raw)"},
                        {"1 2\n2 2", 3, 1, L"Raw (Main)"},
                        {"1 3\n2 3", 3, 1, L"Raw (Main)"},
                        {"1 2\n2 3", 3, 1, L"Raw"},
                        {"1 1\n2 1", 3, 1, L"Main Raw"},
                        {"1 1\n2 2", 3, 1, L"Main Raw"},
                        {"1 8\n2 2", 3, 1, L"Main Raw"},
                        {"1 4", -1, -1, L""},
                        {"1 1", INT_MAX, 1, L" Raw"},
                        {"1 4", 4, INT_MIN, L""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.properties) + " " + std::to_string(c.location));
    const std::string text_of_names = names;
    const std::string start = text_of_names.substr(0, text_of_names.find("<TChannelProperty>"));
    const TestStore data(start + "<TChannelProperty>: {\n" + c.properties + "\n}\n");
    CString text = L"old";
    const wchar_t* const given = data.params.FormatLocaChanText(text, c.location, c.channel);
    EXPECT_EQ(given, text.c_str());
    EXPECT_EQ(text, c.text);
    const QClavis key(1, 1, c.channel, c.location, 1, 1);
    EXPECT_STREQ(data.params.FormatLocaChanText(text, key), c.text);
  }
}

TEST(NiceKeyText, JoinsFourFields) {
  struct Case {
    QClavis key;
    const wchar_t* separator;
    const wchar_t* text;
  };
  const Case cases[] = {
      {known, L"|", L"Run | Level | Main | Speed"},
      {QClavis(1, -1, 2, 4, 111, 7), L"\u00B7\u00B7",
       L"Run \u00B7\u00B7 Spectrum H2 \u00B7\u00B7 Other Sync \u00B7\u00B7 Speed"},
      {known, L"", L"Run  Level  Main  Speed"},
      {known, nullptr, L"Run  Level  Main  Speed"},
      {QClavis(), L"|", L"(Nil) |  |  | (Nil)"},
      {unknown, L"|", L" |  |  | "},
      {extreme, L"|", L" |  |  | "}};
  const TestStore data(names);
  for (const Case& c : cases) {
    EXPECT_EQ(data.params.FormatClavisTextNice(c.key, c.separator), c.text);
    EXPECT_EQ(data.params.FormatClavisTextNice(CClavis(c.key.id), c.separator), c.text);
  }
}

TEST(NiceKeyText, EndsAfter499Characters) {
  const std::string longest(190, 'n');
  const TestStore small(names);
  const TestStore large("<TMode>: {\n1 " + longest + "\n}\n<TInstrument>: {\n10 " + longest +
                        "\n}\n<TApplicationSignal>: {\n7 " + longest + "\n}\n");
  const std::wstring wide(190, L'n');
  for (const std::size_t length : {0U, 47U, 157U, 158U, 159U, 240U, 241U, 247U, 248U, 10000U}) {
    const std::wstring separator(length, L's');
    const std::wstring between = L" " + separator + L" ";
    const auto joined = [&](const std::wstring& mode, const std::wstring& instrument,
                            const std::wstring& place, const std::wstring& sensor) {
      return (mode + between + instrument + between + place + between + sensor).substr(0, 499);
    };
    EXPECT_EQ(small.params.FormatClavisTextNice(known, separator.c_str()),
              joined(L"Run", L"Level", L"Main", L"Speed"))
        << length;
    EXPECT_EQ(large.params.FormatClavisTextNice(known, separator.c_str()),
              joined(wide, wide, L"", wide))
        << length;
  }
}

TEST(KeyTexts, HaveOnlyIdsWithoutTables) {
  TestStore data;
  CString text;
  for (const char* state : {"before a load", "after a purge"}) {
    SCOPED_TRACE(state);
    EXPECT_EQ(data.params.FormatClavisText(known, Params::show_id_if_no_name, 0x3F),
              L"[1] / [10] / [1] / [3] / [100] / [7]");
    EXPECT_EQ(data.params.FormatClavisTextNice(known, L"|"), L" |  |  | ");
    EXPECT_STREQ(data.params.FormatInstrParamText(text, known), L"");
    EXPECT_STREQ(data.params.FormatLocaChanText(text, known), L"");
    data.Load(names);
    data.params.PurgeTables();
  }
}

TEST(TypeNameCombo, KeepsWhatItShowed) {
  struct Case {
    const char* aliases;
    const wchar_t* shown;  // by the combo before
    const wchar_t* asked;
    int entries, selected;
  };
  const Case cases[] = {{"1 b\n2 a\n", nullptr, nullptr, 2, -1},
                        {"1 b\n2 a\n", L"a", nullptr, 2, 1},
                        {"1 b\n2 a\n", L"a", L"", 2, 1},
                        {"1 b\n2 a\n", L"a", L"b", 2, 0},
                        {"1 b\n2 a\n", L"a", L"gone", 2, -1},
                        {"1 b\n2 a\n", L"gone", nullptr, 2, -1},
                        {"", L"abc", nullptr, 1, 0},
                        {"", nullptr, L"abc", 1, 0},
                        {"", nullptr, nullptr, 0, -1}};
  for (const Case& c : cases) {
    const TestStore data("<TAliasType>: {\n" + std::string(c.aliases) + "}\n");
    CComboBox combo;
    if (c.shown != nullptr) combo.SetCurSel(combo.AddString(c.shown));
    EXPECT_EQ(data.params.FillTypeNameCombo(combo, c.asked), *c.aliases != 0 ? 2 : 0);
    EXPECT_EQ(combo.GetCount(), c.entries);
    EXPECT_EQ(combo.GetCurSel(), c.selected);
    if (c.entries != 2) continue;
    EXPECT_EQ(combo.GetLBText(0) + combo.GetLBText(1), L"ba");
    EXPECT_EQ(combo.GetItemData(0) * 10 + combo.GetItemData(1), 12);
  }
  const TestStore data("<TAliasType>: {\n1 b\n2 a\n}\n");
  CComboBox sorted(CComboBox::Order::sorted);
  EXPECT_EQ(data.params.FillTypeNameCombo(sorted, L"b"), 2);
  EXPECT_EQ(sorted.GetItemData(0) * 10 + sorted.GetItemData(1), 21);
  EXPECT_EQ(sorted.GetCurSel(), 1);
}

}  // namespace
