// The seas: lists and their views, and the file, which must lose nothing: not on the way out and
// back, not on a full disk, not by a slip of the editor.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "full_disk.h"
#include "interfaces/sea/ResourceSea.h"
#include "test_store.h"

namespace {

namespace fs = std::filesystem;

using testing_support::AddLines;
using testing_support::Lines;
using testing_support::LinesOf;

TEST(Sea, ListsGrowUnderTheirViewsAndEntriesStayInPlace) {
  CResourceSea sea;
  const CResourceSea* const reader = &sea;
  EXPECT_FALSE(sea.IsListEntry(L"<T>"));
  EXPECT_FALSE(CResourceList(reader, L"<T>").IsValid());
  EXPECT_FALSE(sea.IsListEntry(L"<T>")) << "a look made the list";

  CResourceList list(&sea, L"<T>");
  EXPECT_TRUE(sea.IsListEntry(L"<T>"));
  EXPECT_FALSE(list.GotoHead());
  EXPECT_EQ(list.GetCurrentLine(), nullptr);
  CResourceEntry* const first = list.AddLineTail();
  first->SetSeaLine(L"first");
  for (int i = 0; i < 5000; ++i) list.AddLineTail()->SetSeaLine(nullptr);
  CString text;
  first->GetLine(text);
  EXPECT_EQ(text, L"first");

  CResourceList view(reader, L"<T>");
  EXPECT_EQ(view.GetCurrentLine(), first);
  EXPECT_EQ(view.AddLineTail(), nullptr);
  view.RemoveAll();
  EXPECT_EQ(LinesOf(sea, L"<T>").size(), 5001U);
  while (view.GotoNext()) {
  }
  EXPECT_FALSE(view.GotoNext());
  EXPECT_TRUE(view.GotoHead());

  list.RemoveAll();
  EXPECT_FALSE(view.IsValid());
  EXPECT_TRUE(sea.IsListEntry(L"<T>"));
  AddLines(sea, nullptr, {L"nameless"});
  EXPECT_EQ(LinesOf(sea, L""), Lines{L"nameless"});
  CResourceSea* const nowhere = nullptr;
  EXPECT_NE(CResourceList(nowhere, L"x").AddLineTail(), nullptr);
}

TEST(Sea, BooleansAreStoredByTheirAccessCodeAndReadByOthers) {
  CResourceSea sea;
  bool value = true;
  EXPECT_EQ(sea.LookupBool(1, L"Show", value, 0), lookup::result::missing);
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
  ASSERT_TRUE(application && messages);
  EXPECT_NE(application, messages);
  EXPECT_EQ(CSeaBase::SetApplicationSea(nullptr), application);
  EXPECT_EQ(CSeaBase::ApplicationSea(), nullptr);
  CSeaBase::SetApplicationSea(application);
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
  testing_support::Log log_;
};

TEST_F(SeaFile, EveryTextComesBack) {
  std::wstring all;
  for (wchar_t c = 1; c < 0x300; ++c) all += c;
  const std::wstring large(100000, L'x');
  const Lines texts = {all,
                       large,
                       L"",
                       L"  blanks  ",
                       L"\r\n\"\\n\"\\",
                       L"; no comment",
                       L"end",
                       L"\xD83D\xDE00 \xFEFF\xFFFF",
                       L"\xD83D",
                       L"\xDE00\xD83D",
                       L"\xD83D\xD83D\xDE00",
                       L"\\0041",
                       L"\x3000"};
  CResourceSea out;
  for (const std::wstring& name : texts) AddLines(out, name.c_str(), texts);
  AddLines(out, L"empty", {});
  bool yes = true;
  out.LookupBool(2, L"list \xD800\n", yes, 0);
  ASSERT_TRUE(out.Save(Name(L"\u00E4\xD83D\xDE00.sea")));
  EXPECT_TRUE(fs::exists(folder_ / "\xC3\xA4\xF0\x9F\x98\x80.sea")) << "file names are UTF-8";

  CResourceSea in;
  AddLines(in, L"old", {L"gone"});
  CResourceList view(&in, L"old");  // is open over the load and keeps its list
  ASSERT_TRUE(in.Load(Name(L"\u00E4\xD83D\xDE00.sea"))) << Text::ToUtf8(log_.Text());
  for (const std::wstring& name : texts) EXPECT_EQ(LinesOf(in, name.c_str()), texts);
  EXPECT_TRUE(in.IsListEntry(L"empty"));
  EXPECT_FALSE(in.IsListEntry(L"old"));
  EXPECT_TRUE(view.IsValid());
  EXPECT_TRUE(in.LookupGetBool(L"list \xD800\n", 0, false));
}

TEST_F(SeaFile, IsTheOneThatIsDescribedAndTakesWhatEditorsDo) {
  CResourceSea sea;
  bool no = false;
  sea.LookupBool(2, L"B", no, 0);
  AddLines(sea, L"<T>", {L"1 \"a\"\t\x7F", L"\u00FC\xDC00 ", L""});
  ASSERT_TRUE(sea.Save(Name(L"a.sea")));
  EXPECT_EQ(Bytes(),
            "sea 2\nlist <T>\n- 1 \"a\"\\0009\\007f\n- \xC3\xBC\\dc00\\0020\n-\nfalse B\nend\n");

  Put("\xEF\xBB\xBFsea 2\r\n; mended by hand\r\n\r\n list\t<T> \r\n-\xE3\x80\x80\\00FC\r\n; "
      "more\r\n"
      "- 2\r\ntrue  B\r\nlist <U>\nlist <T>\n- 3\nend");
  ASSERT_TRUE(sea.Load(Name(L"a.sea"))) << Text::ToUtf8(log_.Text());
  EXPECT_EQ(LinesOf(sea, L"<T>"), (Lines{L"\u00FC", L"2", L"3"}));
  EXPECT_TRUE(sea.LookupGetBool(L"B", 0, false));
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(SeaFile, ABadFileLeavesTheSeaAndNamesTheLine) {
  const std::string head = "sea 2\nlist new\n";
  const std::vector<std::pair<std::string, std::wstring>> cases = {
      {"", L"line 0: the last line 'end' is missing"},
      {"sea 1\nend\n", L"line 1: it is not 'sea 2'"},
      {head + "- 1\n", L"line 3: the last line 'end' is missing"},
      {head + "- 1\\\nend\n", L"line 3: a backslash"},
      {head + "- \\12\nend\n", L"line 3: a backslash"},
      {head + "- \\12g4\nend\n", L"line 3: a backslash"},
      {head + "- \\-123\nend\n", L"line 3: a backslash"},
      {head + "- \\0000\nend\n", L"line 3: a backslash"},
      {head + std::string("- a\0b\nend\n", 10), L"line 0: the file is no UTF-8 text"},
      {head + "- \xFF\nend\n", L"line 0: the file is no UTF-8 text"},
      {head + "1 2 3\nend\n", L"line 3: it is no list"},
      {head + "end now\n", L"line 3: it is no list"},
      {"sea 2\n- 1\nend\n", L"line 2: it is no list"},
      {head + "end\nlist late\n", L"line 4: it stands behind"}};
  CResourceSea sea;
  AddLines(sea, L"old", {L"kept"});
  for (const auto& [bytes, why] : cases) {
    log_.lines.clear();
    Put(bytes);
    EXPECT_FALSE(sea.Load(Name(L"a.sea"))) << bytes;
    EXPECT_NE(log_.Text().find(why), std::wstring::npos) << bytes;
  }
  fs::create_directory(folder_ / "d");
  for (const wchar_t* const name : {L"missing", L"d", L"d/x/y"}) {
    EXPECT_FALSE(sea.Load(Name(name))) << name;
  }
  EXPECT_EQ(LinesOf(sea, L"old"), Lines{L"kept"});
  EXPECT_FALSE(sea.IsListEntry(L"new"));
}

TEST_F(SeaFile, IsRefusedWhereverItIsCut) {
  const std::string whole = "\xEF\xBB\xBFsea 2\nlist new\n- \xC3\xBC \\00fc\ntrue B\nend\n";
  CResourceSea sea;
  AddLines(sea, L"old", {L"kept"});
  for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
    Put(whole.substr(0, size));
    log_.lines.clear();
    EXPECT_FALSE(sea.Load(Name(L"a.sea"))) << size;
    EXPECT_EQ(log_.lines.size(), 1U) << size;
    EXPECT_EQ(LinesOf(sea, L"old"), Lines{L"kept"}) << size;
    EXPECT_FALSE(sea.IsListEntry(L"new") || sea.LookupGetBool(L"B", 0, false)) << size;
  }
  Put(whole.substr(0, whole.size() - 1));  // the last line is whole without its line feed
  EXPECT_TRUE(sea.Load(Name(L"a.sea")));
  EXPECT_EQ(LinesOf(sea, L"new"), Lines{L"\u00FC \u00FC"});
}

TEST_F(SeaFile, ASaveThatFailsLeavesTheOldFileAndNothingElse) {
  CResourceSea sea;
  AddLines(sea, L"<T>", {L"old"});
  ASSERT_TRUE(sea.Save(Name(L"a.sea")));
  const std::string old = Bytes();
  AddLines(sea, L"<T>", {std::wstring(100000, L'n')});
  const auto save_into = [&](rlim_t room) {
    const FullDisk disk(room);
    return sea.Save(Name(L"a.sea"));
  };
  for (const rlim_t room : {0U, 10U, 5000U}) {
    EXPECT_FALSE(save_into(room)) << room;
    EXPECT_EQ(Bytes(), old);
    EXPECT_EQ(Files(), 1);
  }
  EXPECT_NE(log_.Text().find(L"can't be replaced: File too large."), std::wstring::npos);

  // A process that dies in the middle of it; what it left is no hindrance.
  const pid_t child = fork();
  if (child == 0) {
    const rlimit small = {5000, 5000};
    setrlimit(RLIMIT_FSIZE, &small);
    std::signal(SIGXFSZ, SIG_DFL);
    sea.Save(Name(L"a.sea"));
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(Bytes(), old);
  EXPECT_EQ(Files(), 2);

  fs::create_directory(folder_ / "d");
  for (const std::wstring& name :
       {Name(L"d"), Name(L"missing/a.sea"), Name(L"a.sea/b.sea"), std::wstring(),
        std::wstring(L"/dev/full"), std::wstring(L"/proc/a.sea")}) {
    EXPECT_FALSE(sea.Save(name)) << name;
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  if (geteuid() != 0) {  // root may write into every folder
    fs::permissions(folder_ / "d", fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(sea.Save(Name(L"d/a.sea")));
    EXPECT_TRUE(fs::is_empty(folder_ / "d"));
    fs::permissions(folder_ / "d", fs::perms::owner_all);
  }
  EXPECT_EQ(Files(), 3);
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
