// The seas: lists and their views, and the file, which must lose nothing: not on the way out and
// back, not on a full disk, not by a slip of the editor.
#include "support.h"

namespace {

namespace fs = std::filesystem;

TEST(Sea, ListsGrowUnderTheirViewsAndEntriesStayInPlace) {
  CResourceSea sea;
  const CResourceSea* const reader = &sea;
  EXPECT_FALSE(CResourceList(reader, L"<T>").IsValid());
  EXPECT_FALSE(sea.IsListEntry(L"<T>")) << "a look made the list";

  CResourceList list(&sea, L"<T>");
  EXPECT_TRUE(sea.IsListEntry(L"<T>"));
  EXPECT_FALSE(list.GotoHead());
  EXPECT_EQ(list.GetCurrentLine(), nullptr);
  CResourceEntry* const first = list.AddLineTail();
  first->SetSeaLine(L"first");
  for (int i = 0; i < 5000; ++i) list.AddLineTail()->SetSeaLine(nullptr);
  CResourceList view(reader, L"<T>");
  EXPECT_EQ(view.GetCurrentLine(), first);
  EXPECT_EQ(view.AddLineTail(), nullptr);
  view.RemoveAll();
  Lines lines(5001);
  lines[0] = L"first";
  EXPECT_EQ(LinesOf(sea, L"<T>"), lines);
  list.RemoveAll();
  EXPECT_FALSE(view.IsValid());
  EXPECT_TRUE(sea.IsListEntry(L"<T>"));
  AddLines(sea, nullptr, {L"nameless"});
  EXPECT_EQ(LinesOf(sea, L""), Lines{L"nameless"});
}

TEST(Sea, BooleansAreStoredByTheirAccessCodeAndReadByOthers) {
  CResourceSea sea;
  bool value = true;
  EXPECT_EQ(sea.LookupBool(1, L"Show", value, 0), lookup::result::missing);
  EXPECT_TRUE(value);
  EXPECT_FALSE(sea.LookupGetBool(L"Show", 0, false)) << "stored by a foreign code";
  for (const bool stored : {true, false}) {
    value = stored;
    EXPECT_EQ(sea.LookupBool(2, L"Show", value, 0), lookup::result::found);
    value = !stored;
    EXPECT_EQ(sea.LookupBool(1, L"Show", value, 0), lookup::result::found);
    EXPECT_EQ(value, stored);
    EXPECT_EQ(sea.LookupGetBool(L"Show", 0, !stored), stored);
  }
}

TEST(Sea, TheProcessHasBothSeasAndTakesAHostsOwn) {
  CResourceSea own;
  CResourceSea* const application = CSeaBase::ApplicationSea();
  CResourceSea* const messages = CSeaBase::MessagesSea();
  EXPECT_TRUE(application && messages && application != messages);
  EXPECT_EQ(CSeaBase::SetMessagesSea(&own), messages);
  EXPECT_EQ(CSeaBase::SetMessagesSea(nullptr), &own);
  EXPECT_EQ(CSeaBase::MessagesSea(), messages);
}

// A folder for the files of a test.
class SeaFile : public testing::Test {
 protected:
  SeaFile() {
    fs::remove_all(folder_);  // of an earlier run
    fs::create_directory(folder_);
  }
  ~SeaFile() override { fs::remove_all(folder_); }

  std::wstring Name(const std::wstring& name) const {
    return Text::FromUtf8(folder_.string()) + L"/" + name;
  }
  void Put(const std::string& bytes) const {
    std::ofstream(folder_ / "a.sea", std::ios::binary) << bytes;
  }
  std::string Bytes() const { return BytesOf(folder_ / "a.sea"); }
  std::ptrdiff_t Files() const {
    return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
  }

  const fs::path folder_ = testing::TempDir() + "seas_" + std::to_string(getpid());
  Log log_;
};

TEST_F(SeaFile, IsTheOneThatIsDescribedAndTakesWhatEditorsDo) {
  CResourceSea sea;
  bool no = false;
  sea.LookupBool(2, L"B", no, 0);
  AddLines(sea, L"<T>", {L"1 \"a\"\t\x7F", L"\u00FC\xDC00 ", L""});
  ASSERT_TRUE(sea.Save(Name(L"a.sea")));
  EXPECT_EQ(Bytes(),
            "sea 2\nlist <T>\n- 1 \"a\"\\0009\\007f\n- \xC3\xBC\\dc00\\0020\n-\nfalse B\nend\n");

  Put("\xEF\xBB\xBFsea 2\r\n; mended\r\n\r\n list\t<T> \r\n-\xE3\x80\x80\\00FC\r\n; by hand\r\n"
      "- 2\r\ntrue  B\r\nlist <U>\nlist <T>\n- 3\nend");
  ASSERT_TRUE(sea.Load(Name(L"a.sea"))) << Text::ToUtf8(log_.Text());
  EXPECT_EQ(LinesOf(sea, L"<T>"), (Lines{L"\u00FC", L"2", L"3"}));
  EXPECT_TRUE(sea.LookupGetBool(L"B", 0, false));
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(SeaFile, ABadFileLeavesTheSeaAndNamesTheLine) {
  const std::string head = "sea 2\nlist new\n";
  std::vector<std::pair<std::string, std::wstring>> cases = {
      {"sea 1\nend\n", L"line 1: it is not 'sea 2'"},
      {"sea 2\n- 1\nend\n", L"line 2: it is no list"},
      {head + "1 2 3\nend\n", L"line 3: it is no list"},
      {head + "end now\n", L"line 3: it is no list"},
      {head + "end\nlist late\n", L"line 4: it stands behind"},
      {head + std::string("- a\0b\nend\n", 10), L"line 0: the file is no UTF-8 text"},
      {head + "- \xFF\nend\n", L"line 0: the file is no UTF-8 text"}};
  for (const char* const bad : {"\\", "\\12g4", "\\-123", "\\0000"}) {
    cases.push_back({head + "- " + bad + "\nend\n", L"line 3: a backslash"});
  }
  const std::string whole = head + "- \xC3\xBC \\00fc\ntrue B\nend\n";
  for (std::size_t cut = 0; cut + 1 < whole.size(); ++cut) {
    cases.push_back({whole.substr(0, cut), L"line"});
  }
  CResourceSea sea;
  AddLines(sea, L"old", {L"kept"});
  for (const auto& [bytes, why] : cases) {
    log_.lines.clear();
    Put(bytes);
    EXPECT_FALSE(sea.Load(Name(L"a.sea"))) << bytes;
    EXPECT_NE(log_.Text().find(why), std::wstring::npos) << bytes;
    EXPECT_EQ(log_.lines.size(), 1U) << bytes;
  }
  for (const wchar_t* const name : {L"missing", L"", L"d/x/y"}) {
    EXPECT_FALSE(sea.Load(Name(name))) << name;
  }
  EXPECT_EQ(LinesOf(sea, L"old"), Lines{L"kept"});
  EXPECT_FALSE(sea.IsListEntry(L"new") || sea.LookupGetBool(L"B", 0, false));
}

TEST_F(SeaFile, ASaveThatFailsLeavesTheOldFileAndNothingElse) {
  CResourceSea sea;
  AddLines(sea, L"<T>", {L"old"});
  ASSERT_TRUE(sea.Save(Name(L"a.sea")));
  const std::string old = Bytes();
  AddLines(sea, L"<T>", {std::wstring(100000, L'n')});
  for (const rlim_t room : {0U, 10U, 5000U}) {
    const auto save = [&] {
      const FullDisk disk(room);
      return sea.Save(Name(L"a.sea"));
    };
    EXPECT_FALSE(save()) << room;
    EXPECT_EQ(Bytes(), old);
    EXPECT_EQ(Files(), 1);
  }
  EXPECT_NE(log_.Text().find(L"can't be replaced: File too large."), std::wstring::npos);

  // A process that dies in the middle of it; what it left is no hindrance.
  if (fork() == 0) {
    const FullDisk disk(5000);
    std::signal(SIGXFSZ, SIG_DFL);
    sea.Save(Name(L"a.sea"));
    _exit(0);
  }
  int status = 0;
  wait(&status);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(Bytes(), old);
  for (const std::wstring& name : {Name(L""), Name(L"missing/a.sea"), Name(L"a.sea/b.sea"),
                                   std::wstring(), std::wstring(L"/dev/full")}) {
    EXPECT_FALSE(sea.Save(name)) << name;
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_EQ(Files(), 2);
  EXPECT_TRUE(sea.Save(Name(L"a.sea"))) << "there is room again";
}

TEST_F(SeaFile, ASaveKeepsModeAndLinkOfTheFile) {
  CResourceSea sea;
  ASSERT_TRUE(sea.Save(Name(L"a.sea")));
  constexpr auto mode = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(folder_ / "a.sea", mode);
  fs::create_symlink("a.sea", folder_ / "link");
  AddLines(sea, L"<T>", {L"new"});
  ASSERT_TRUE(sea.Save(Name(L"link")));
  EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
  EXPECT_NE(Bytes().find("new"), std::string::npos);
  EXPECT_EQ(fs::status(folder_ / "a.sea").permissions(), mode);
}

}  // namespace
