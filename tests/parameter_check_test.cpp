// What is wrong in a file is told at its line, and nothing is told of a good one.
#include "support.h"

namespace {

// "line kind" of each finding, with the line that it speaks of besides.
std::string Findings(const CLake& lake) {
  std::string text;
  for (const auto& finding : ParameterCheck::Check(lake)) {
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
  const std::string x198(180, 'x');
  const Case cases[] = {
      {"", ""},
      {"; note\n\n<TMode>: {\n1 one\n2 \"two\"\n}\na: b\n", ""},
      {"<TMode>: {\nx one\n1 one\n}\n", "4 bad_line@1\n"},
      {"<TRotorSpeed>: {\n1 2 3\n1 99999999999 3\n}\n", "5 bad_line/4@2\n"},
      {"<TMode>: {\n1 " + std::string(200, 'x') + "\n}\n", "4 bad_line@2\n"},
      {"<TMode>: {\n1 " + x198 + "\n}\n", "4 text_near_limit@2\n"},
      {"<TMode>: {\n1 one\n1 two\n1 three\n}\n", "5 duplicate_key/4\n6 duplicate_key/4\n"},
      {"<TIpPolygonValue>: {\n1 0.0 1\n1 -0.0 1\n1 1e-7 1\n1 1.0000001 1\n1 1 1\n}\n",
       "5 duplicate_key/4\n"},
      {"<TMode>: {\n; note\n\n1 one\n\n}\n", "4 blank_line\n5 blank_line/4\n7 blank_line/6\n"},
      {"<TAutoModeSelector>: {\n\n1 1 1 1 1 1 1 1 1 1\n\n}\n", "4 blank_line\n6 blank_line\n"},
      {"<TModeTranslate>: {\nname 5\n\n}\n", "5 blank_line\n"},
      {"<TMode>: {\n\n-1 x\n}\n", "4 blank_line\n5 duplicate_key/4\n"},
      // What is dropped is told, too, of lines that are bad or short.
      {"<TRotorSpeed>: {\n1 2 3\n9 x 3\n9 2 7\n9\n}\n",
       "5 bad_line@2\n6 duplicate_key/5\n7 short_line/5@2\n"},
      {"<TMode>: {\n5\n}\n<TErrorGroup>: {\n1 0 4\n}\n", "4 short_line@2\n7 short_line@4\n"},
      {"<TAutoModeSelector>: {\n1 1 2 3\n}\n", "4 short_line@5\n"},
      {"<TMode>: {\n1 one more\n}\n", "4 extra_fields\n"},
      {"<TMode>: {\n12:30 a\n12:45 b\n1 one\n}\n", "4 keyed_line\n5 keyed_line\n"},
      {"<TMode>: 5\n", "3 no_section\n"},
      {"<TMode>: x\n<TMode>: {\n1 one\n}\n", ""},
      {"<TOther>: {\n1\n}\n", "3 unknown_section\n"},
      {"<TMode>: {\nx\n}\n<TMode>: {\n1 one\n}\n", "6 duplicate_section/3\n"},
      {"a: 1\na: 2\n", "4 duplicate_line/3\n"},
      {"1 \"row\"\n{\n2 \"row\"\n}\n", "3 outside_section\n4 outside_section\n"},
      {"<TMode>: {\n1 one\n", "3 unclosed_section\n"},
      {"}\n<TMode>: {\nx\n}\n", "3 unreachable_lines/6\n"},
      {"}", "3 unreachable_lines\n"},
      {"<TInstrumentParam>: {\n5 1 p 0 0 0\n}\n<TGrex15>: {\n1 1 1 1 5 1 0 0\n1 1 1 1 6 1 0 0\n}\n",
       "8 unknown_parameter@5\n"}};
  for (const Case& c : cases) {
    EXPECT_EQ(Findings(FromBytes("\xEF\xBB\xBF" + (version + c.sections))), c.findings)
        << c.sections;
  }
  EXPECT_EQ(Findings(FromBytes("")), "0 refused_version\n");
  EXPECT_EQ(Findings(FromBytes("<DbDesign.CacheVersion>: 216\n")), "1 refused_version\n");
  EXPECT_EQ(Findings(CLake(Text::FromUtf8(KESTRIN_SAMPLES "/gearbox.par"))), "");
}

TEST(ParameterCheck, SaysWhatBecomesOfALine) {
  const CLake lake = FromBytes(version + std::string("<TTrigger>: {\n1 one 7\n2\n}\n"));
  const auto findings = ParameterCheck::Check(lake);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].field, "name");
  EXPECT_EQ(findings[0].section, L"<TTrigger>");
  EXPECT_EQ(findings[0].message,
            "the line ends here; taken over from the line before: second = 7; empty: name");
}

// In a table with unique keys every line is a row or told to be dropped.
TEST(ParameterCheck, LosesNoLine) {
  const std::string lines = "2 2 1\n\n1 x\n1\n2 2 5\n; c\nx\n3 2 2 2\n9\n";
  for (const char* section :
       {"<TRotorSpeed>", "<TModeTranslate>", "<TIpPolygonValue>", "<TMode>"}) {
    const std::string text = std::string(section) + ": {\n" + lines + "}\n";
    TestStore data(text);
    std::size_t dropped = 0;
    for (const auto& finding : ParameterCheck::Check(FromBytes(version + text))) {
      if (finding.other_line != 0) ++dropped;
    }
    const auto* table = TableCatalogue::Find(section);
    EXPECT_EQ(table->row_count(data.store) + dropped, 9U) << section;
  }
}

}  // namespace
