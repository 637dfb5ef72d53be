// A tidied file says what it said. (What it looks like is told in cases/sessions/data.txt.)
#include "inspect/Tidy.h"

#include "support.h"

namespace {

// All rows of all tables but for the times of the load, or why there are none.
std::string Tables(const std::string& bytes) {
  CParameterLake::Lake() = FromBytes(bytes);
  TestStore data;
  data.params.ReadTablesFromCandidateLake();
  CParameterLake::Lake().clear();
  std::string text = Text::ToUtf8(data.log.Text());
  for (const auto& table : TableCatalogue::Tables()) {
    table.walk(data.store, [&](std::span<const TableType::FieldView> columns) {
      for (const auto& column : columns) {
        if (column.kind == TableType::FieldKind::long_long) continue;
        text += TableCatalogue::ToText(TableCatalogue::ValueOf(column)) + '\n';
      }
    });
  }
  return text;
}

// The lines but for blank ones, which may come and go between sections.
std::wstring Lines(const std::string& bytes) {
  std::wstring text;
  for (const auto& line : FromBytes(bytes)) {
    const std::wstring all = line.key() + L'\x1' + line.value() + L'\x1' + line.comment();
    if (all.size() > 2) text += all + L'\n';
  }
  return text;
}

TEST(Tidy, KeepsTablesAndLinesOfEveryFileAndIsDoneAfterOneTime) {
  std::vector<std::string> files = {BytesOf(KESTRIN_SAMPLES "/gearbox.par")};
  for (const char* const folder : {KESTRIN_FUZZ "/corpus/lake", KESTRIN_FUZZ "/corpus/load"}) {
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
      files.push_back(BytesOf(file.path()));
    }
  }
  EXPECT_GT(files.size(), 200U);
  std::size_t changed = 0;
  std::size_t loaded = 0;
  for (const std::string& file : files) {
    // Those of the corpus without version lines get some, so that they are loaded.
    for (const std::string& bytes : {file, version + file}) {
      const std::string tidied = Tidied(bytes);
      changed += tidied != bytes ? 1 : 0;
      const std::string tables = Tables(bytes);
      loaded += tables.size() > 1000 ? 1 : 0;
      EXPECT_EQ(Tidied(tidied), tidied) << testing::PrintToString(bytes);
      EXPECT_EQ(Lines(tidied), Lines(bytes)) << testing::PrintToString(bytes);
      EXPECT_EQ(Tables(tidied), tables) << testing::PrintToString(bytes);
    }
  }
  EXPECT_GT(changed, 200U);
  EXPECT_GT(loaded, 20U);
}

}  // namespace
