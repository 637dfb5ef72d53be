// Keys and types as people read them in dialogs, logs and lists.

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <tuple>

#include "interfaces/windows/ComboBoxX.h"
#include "test_store.h"

namespace {

using testing_support::TestStore;
using Params = CQtParamInstance;

// With the properties of the channels as given.
std::string Names(const std::string& channel_properties = "1 4\n2 1") {
  return "<TMode>: {\n1 Run\n}\n"
         "<TInstrument>: {\n10 Level\n11 Spectrum\n}\n"
         "<TChannel>: {\n1 Raw\n2 Sync\n}\n"
         "<TLocation>: {\n3 Main\n4 Other\n5 Third\n}\n"
         "<TInstrumentParam>: {\n100 10 RMS\n110 11 H1\n111 11 H2\n}\n"
         "<TApplicationSignal>: {\n7 Speed\n}\n"
         "<TLocationProperty>: {\n3 4\n4 3\n}\n"
         "<TChannelProperty>: {\n" +
         channel_properties + "\n}\n";
}

const QClavis known(1, 10, 1, 3, 100, 7);
const QClavis unknown(9, 9, 9, 9, 9, 9);
const QClavis extreme(INT_MIN, INT_MAX, 0, INT_MIN, INT_MAX, INT_MIN);

TEST(KeyText, ShowsChosenElementsAndTheirIds) {
  constexpr auto never = Params::show_id_never;
  constexpr auto always = Params::show_id_always;
  constexpr auto if_no_name = Params::show_id_if_no_name;
  const std::tuple<QClavis, Params::show_id_t, unsigned long, const wchar_t*> cases[] = {
      {known, never, 0x3F, L"Run / Level / Raw / Main / RMS / Speed"},
      {known, always, 0x3F, L"Run [1] / Level [10] / Raw [1] / Main [3] / RMS [100] / Speed [7]"},
      {known, always, 0, L""},
      {known, never, 0x21, L"Run / Speed"},
      {unknown, never, 0x3F, L""},  // empty in front: no separator at all
      {QClavis(1, 9, 9, 9, 9, 7), never, 0x23, L"Run /  / Speed"},
      {QClavis(1, -1, 9, -1, 100, -1), if_no_name, 0x3F,
       L"Run / (Nil) / [9] / (Nil) / RMS / (Nil)"},
      {QClavis(), always, 0x03, L"(Nil) [-1] / (Nil) [-1]"},
      {extreme, always, 0x3F,
       L"[-2147483648] / [2147483647] / [0] / [-2147483648] / [2147483647] / [-2147483648]"}};
  const TestStore data(Names());
  for (const auto& [key, show, mask, text] : cases) {
    EXPECT_EQ(data.params.FormatClavisText(key, show, mask), text);
    EXPECT_EQ(data.params.FormatClavisText(CClavis(key.id), show, mask), text);
  }
  // Without a word of what to show, the setting for dialogs holds.
  const QClavis key(1, 9, -1, -1, -1, -1);
  Params::ShowIdsInDialogs(true);
  EXPECT_EQ(data.params.FormatClavisText(key, 3), L"Run [1] / [9]");
  Params::ShowIdsInDialogs(false);
  EXPECT_EQ(data.params.FormatClavisText(key, 3), L"Run / [9]");
  EXPECT_EQ(data.params.FormatClavisText(CClavis(key.id), 3), L"Run / [9]");
}

TEST(InstrumentText, ShowsTheParameterOnlyWhereThereAreSeveral) {
  const std::tuple<int, int, const wchar_t*> cases[] = {
      {10, 110, L"Level"},   {11, 110, L"Spectrum H1"},
      {11, 9, L"Spectrum "}, {-1, 111, L"Spectrum H2"},
      {-1, 100, L"Level"},   {-1, -1, L""},
      {9, 110, L""}};
  const TestStore data(Names());
  for (const auto& [instrument, parameter, expected] : cases) {
    CString text = L"old";
    const wchar_t* const given = data.params.FormatInstrParamText(text, instrument, parameter);
    EXPECT_EQ(given, text.c_str());
    EXPECT_EQ(text, expected) << instrument << ' ' << parameter;
    const QClavis key(1, instrument, 1, 1, parameter, 1);
    EXPECT_STREQ(data.params.FormatInstrParamText(text, key), expected);
  }
}

TEST(PlaceText, ShowsWhatTellsTheChannelFromOthersOfItsKind) {
  const std::tuple<const char*, int, int, const wchar_t*> cases[] = {
      {"1 4\n2 4", 3, 1, L"Main (Raw)"},
      {"1 6\n2 6", 4, 1, L"Other (Raw)"},
      {"1 4\n2 1", 3, 1, L"Main"},   // the object's flag 4
      {"1 4\n2 1", 4, 1, L"Raw"},    // other flags
      {"1 4\n2 6", 5, 1, L"Third"},  // no properties
      {"2 1", 4, 1, L"Raw"},         // a channel without properties has type 0
      {"2 0\n3 0", 4, 1, L"Other (Raw)"},
      {"1 3\n2 3", 3, 1, L"Raw (Main)"},
      {"1 2\n2 3", 3, 1, L"Raw"},
      {"1 1\n2 1", 3, 1, L"Main Raw"},
      {"1 8\n2 2", 3, 1, L"Main Raw"},
      {"1 1", INT_MAX, 1, L" Raw"},
      {"1 4", 4, INT_MIN, L""}};
  for (const auto& [properties, location, channel, expected] : cases) {
    SCOPED_TRACE(testing::Message() << properties << ' ' << location);
    const TestStore data(Names(properties));
    CString text = L"old";
    const wchar_t* const given = data.params.FormatLocaChanText(text, location, channel);
    EXPECT_EQ(given, text.c_str());
    EXPECT_EQ(text, expected);
    const QClavis key(1, 1, channel, location, 1, 1);
    EXPECT_STREQ(data.params.FormatLocaChanText(text, key), expected);
  }
}

TEST(NiceKeyText, JoinsFourFields) {
  const std::tuple<QClavis, const wchar_t*, const wchar_t*> cases[] = {
      {known, L"|", L"Run | Level | Main | Speed"},
      {QClavis(1, -1, 2, 4, 111, 7), L"\u00B7\u00B7",
       L"Run \u00B7\u00B7 Spectrum H2 \u00B7\u00B7 Other Sync \u00B7\u00B7 Speed"},
      {known, nullptr, L"Run  Level  Main  Speed"},
      {QClavis(), L"|", L"(Nil) |  |  | (Nil)"},
      {extreme, L"|", L" |  |  | "}};
  const TestStore data(Names());
  for (const auto& [key, separator, text] : cases) {
    EXPECT_EQ(data.params.FormatClavisTextNice(key, separator), text);
    EXPECT_EQ(data.params.FormatClavisTextNice(CClavis(key.id), separator), text);
  }
}

TEST(NiceKeyText, EndsAfter499Characters) {
  const TestStore data(Names());
  for (const std::size_t length : {0U, 158U, 159U, 241U, 248U, 10000U}) {
    const std::wstring separator(length, L's');
    const std::wstring between = L" " + separator + L" ";
    EXPECT_EQ(data.params.FormatClavisTextNice(known, separator.c_str()),
              (L"Run" + between + L"Level" + between + L"Main" + between + L"Speed").substr(0, 499))
        << length;
  }
  const TestStore long_names("<TMode>: {\n1 " + std::string(190, 'm') +
                             "\n}\n<TInstrument>: {\n10 " + std::string(190, 'i') +
                             "\n}\n<TApplicationSignal>: {\n7 " + std::string(190, 's') + "\n}\n");
  EXPECT_EQ(long_names.params.FormatClavisTextNice(known, L"|"),
            std::wstring(190, L'm') + L" | " + std::wstring(190, L'i') + L" |  | " +
                std::wstring(110, L's'));
}

TEST(TypeNameCombo, KeepsWhatItShowed) {
  // What the combo showed and what is asked for; the entry selected then.
  const std::tuple<const wchar_t*, const wchar_t*, int> cases[] = {
      {nullptr, nullptr, -1}, {L"a", nullptr, 1},     {L"a", L"", 1}, {L"a", L"b", 0},
      {L"a", L"gone", -1},    {L"gone", nullptr, -1}, {L"", L"", 2}};
  const TestStore data("<TAliasType>: {\n1 b\n2 a\n3 \"\"\n}\n");
  for (const auto& [shown, asked, selected] : cases) {
    CComboBox combo;
    if (shown != nullptr) combo.SetCurSel(combo.AddString(shown));
    EXPECT_EQ(data.params.FillTypeNameCombo(combo, asked), 3);
    EXPECT_EQ(combo.GetCount(), 3);
    EXPECT_EQ(combo.GetCurSel(), selected);
    EXPECT_EQ(combo.GetLBText(0) + combo.GetLBText(1), L"ba");
    EXPECT_EQ(combo.GetItemData(0) * 10 + combo.GetItemData(1), 12);
  }
  CComboBox sorted(CComboBox::Order::sorted);
  EXPECT_EQ(data.params.FillTypeNameCombo(sorted, L"b"), 3);
  EXPECT_EQ(sorted.GetItemData(1) * 10 + sorted.GetItemData(2), 21);
  EXPECT_EQ(sorted.GetCurSel(), 2);

  // Without types there is nothing but that text.
  const TestStore empty;
  CComboBox combo;
  for (const int count : {0, 1}) {
    EXPECT_EQ(empty.params.FillTypeNameCombo(combo, nullptr), 0);
    EXPECT_EQ(combo.GetCount(), count);
    EXPECT_EQ(combo.GetCurSel(), count - 1);
    EXPECT_EQ(empty.params.FillTypeNameCombo(combo, L"abc"), 0);
    EXPECT_EQ(combo.GetLBText(combo.GetCurSel()), L"abc");
  }
}

}  // namespace
