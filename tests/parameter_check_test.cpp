// What is wrong in a file is told at its line, and nothing is told of a good one. What is told of
// each slip of the pen stands in cases/sessions/slips.txt.
#include "frame/LoadForInspection.h"
#include "interfaces/sea/LogListener.h"
#include "support.h"

namespace {

using ParameterCheck::Finding;
using ParameterCheck::Kind;

// "line kind" of each finding, with the line that it speaks of besides, and the field.
std::string Findings(const CLake& lake) {
  std::string text;
  for (const Finding& finding : ParameterCheck::Check(lake, {.references = false})) {
    text += std::to_string(finding.line) + ' ' + ParameterCheck::Name(finding.kind);
    if (finding.other_line != 0) text += '/' + std::to_string(finding.other_line);
    if (finding.position != 0) text += '@' + std::to_string(finding.position);
    text += '\n';
  }
  return text;
}

TEST(ParameterCheck, TellsEachFaultAtItsLine) {
  struct Case {
    std::string sections;  // from line 3 on
    std::string findings;
  };
  const std::string long_name = Text::ToUtf8(std::wstring(180, L'\xE4'));
  const Case cases[] = {
      {"; note\n\n<TMode>: {\n1 one\n2 \"two\"\n}\n", ""},
      {"<TMode>: {\n1 " + long_name + "\n}\n", "4 text_near_limit@2\n"},
      {"<TIpPolygonValue>: {\n1 0.0 1\n1 -0.0 1\n1 1e-7 1\n1 1.0000001 1\n1 1 1\n}\n",
       "5 duplicate_key/4\n"},
      {"<TAutoModeSelector>: {\n\n1 1 1 1 1 1 1 1 1 1\n\n}\n", "4 blank_line\n6 blank_line\n"},
      {"<TModeTranslate>: {\nname 5\n\n}\n", "5 blank_line\n"},
      {"<TMode>: {\n\n-1 x\n}\n", "4 blank_line\n5 duplicate_key/4\n"},
      // What is dropped is told, too, of lines that are bad or short.
      {"<TRotorSpeed>: {\n1 2 3\n9 x 3\n9 2 7\n9\n}\n",
       "5 bad_line@2\n6 duplicate_key/5\n7 short_line/5@2\n"},
      {"<TAutoModeSelector>: {\n1 1 2 3\n}\n", "4 short_line@5\n"},
      {"<TMode>: x\n<TMode>: {\n1 one\n}\n", ""},
      {"a: 1\na: 2\n", "3 unknown_line\n4 unknown_line\n4 duplicate_line/3\n"},
      {"{\n2 \"row\"\n}\n", "3 outside_section\n"},
      {"}\n<TMode>: {\nx\n}\n", "3 unreachable_lines/6\n"},
      {"<TOther>: {\n<TMode>: {\n1 one\n}\n}\n", "3 unknown_section\n"},
      {"<TMode>: {\n1 one\n<TChannel>: {\n1 x\n}\n}\n", "5 nested_section/3\n"},
      {"<TMode>: {\n1 one\n<TChannel>: {\n1 x\n}\n\n", "3 unclosed_section\n"},
      {"<TGrex15>: {\n-1 -1 -1 -1 -1 -1 0.5 1\n}\n", "4 unknown_parameter@5\n"},
      {"<TGrex15>: {\n; none\n}\n", "4 blank_line\n4 unknown_parameter@5\n"},
      {"<TModeProperty>: {\n1 1 -5 1 1\n}\n", "4 negative_number@3\n"},
      {"<TIpCalcParameter>: {\n1 1 eleven\n1 4 \"2 \"\n}\n", "4 no_number@3\n"},
      {"<TInstrumentParam>: {\n1 1 a 0 0 0\n2 2 a 0 0 0\n3 2 a 0 0 0\n}\n",
       "6 duplicate_name/5@3\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Findings(FromBytes("\xEF\xBB\xBF" + (version + c.sections))), c.findings)
        << c.sections;
  }
  EXPECT_EQ(Findings(CLake(Text::FromUtf8(KESTRIN_SAMPLES "/gearbox.par"))), "");
}

// In a table with unique keys every line is a row or told to be dropped.
TEST(ParameterCheck, LosesNoLine) {
  const std::string lines = "2 2 1\n\n1 x\n1\n2 2 5\n; c\nx\n3 2 2 2\n9\n";
  for (const char* section :
       {"<TRotorSpeed>", "<TModeTranslate>", "<TIpPolygonValue>", "<TMode>"}) {
    const std::string text = std::string(section) + ": {\n" + lines + "}\n";
    TestStore data(text);
    std::size_t dropped = 0;
    for (const Finding& finding : ParameterCheck::Check(FromBytes(version + text))) {
      if (finding.other_line != 0) ++dropped;
    }
    const auto* table = TableCatalogue::Find(section);
    EXPECT_EQ(table->row_count(data.store) + dropped, 9U) << section;
  }
}

// A line of the log by what it speaks of: the number of a line, or the key of a row.
using Spoken = std::pair<std::size_t, std::vector<int>>;

std::set<Spoken> WhatALoadLogs(const CLake& lake) {
  std::set<Spoken> spoken;
  const LogListener listener([&](std::wstring_view text, const LogSubject* subject) {
    ASSERT_NE(subject, nullptr) << Text::ToUtf8(text);
    std::size_t line = 1;
    for (const auto& node : lake) {
      std::string room;
      if (subject->line && node.bytes(room).data() == subject->line->data()) break;
      ++line;
    }
    spoken.insert({subject->line ? line : 0, {subject->key.begin(), subject->key.end()}});
  });
  CQtParamDistillery data;
  LoadForInspection::Run(data, lake);
  return spoken;
}

TEST(ParameterCheck, KnowsNoLessThanALoad) {
  std::vector<std::filesystem::path> files = {KESTRIN_SAMPLES "/gearbox.par"};
  for (const char* folder : {KESTRIN_FUZZ "/corpus/load", KESTRIN_FUZZ "/corpus/lake"}) {
    for (const auto& file : std::filesystem::directory_iterator(folder)) files.push_back(file);
  }
  std::size_t lines = 0;
  std::size_t keys = 0;
  for (const auto& file : files) {
    const CLake lake(file.wstring());
    std::set<std::size_t> told;  // lines
    std::size_t told_of_keys = 0;
    for (const Finding& finding : ParameterCheck::Check(lake, {.most_of_a_kind = SIZE_MAX})) {
      if (finding.severity != ParameterCheck::Severity::error) continue;
      if (finding.kind == Kind::bad_line || finding.kind == Kind::not_utf8) {
        told.insert(finding.line);
      } else if (finding.kind >= Kind::bad_definition && finding.line != 0) {
        ++told_of_keys;
      }
    }
    std::size_t logged_of_keys = 0;
    for (const auto& [line, key] : WhatALoadLogs(lake)) {
      if (!key.empty()) {
        ++logged_of_keys;
      } else {
        EXPECT_TRUE(told.contains(line)) << file << ':' << line;
        ++lines;
      }
    }
    EXPECT_LE(logged_of_keys, told_of_keys) << file;
    keys += logged_of_keys;
  }
  EXPECT_GT(lines, 100U);
  EXPECT_GT(keys, 0U);
}

TEST(ParameterCheck, IsNotNoticedByTheProcess) {
  TestStore data("<TAppSignalProperty>: {\n7 4 s 1 1 1\n}\n");
  CResourceSea sea;
  AddLines(sea, L"<TAutoModeParam>", {L"x"});
  CResourceSea* const before = CSeaBase::SetApplicationSea(&sea);
  const CLake other = FromBytes(version + "<TAppSignalProperty>: {\n9 4 s 1 1 1\nx\n}\n");
  EXPECT_EQ(Findings(other), "5 bad_line/4@1\n");
  CSeaBase::SetApplicationSea(before);
  EXPECT_EQ(CQtParamDistillery::TimeSignalId(), 7);
  EXPECT_TRUE(data.log.lines.empty());
}

}  // namespace
