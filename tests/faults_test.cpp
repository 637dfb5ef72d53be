// What a host loses when something fails in the middle: memory that runs out at any allocation,
// a medium that fails at any byte, a file that changes its length while it is read, a process that
// ends while it saves. The answer is to be: that one operation, and nothing else.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "allocation_count.h"
#include "frame/ParameterCheck.h"
#include "frame/TableCatalogue.h"
#include "interfaces/File.h"
#include "interfaces/ResourceSea.h"
#include "lake/LakeReader.h"
#include "tables/Allocators.h"
#include "tables/TableFile.h"
#include "test_store.h"

namespace {

namespace fs = std::filesystem;
using testing_support::Log;

// ---- memory -------------------------------------------------------------------------------

constexpr const char* small_text =
    "<TMode>: {\n1 \"Run up\"\n2 Down\nx\n}\n<TChannel>: {\n1 Raw\n3 Mix\n}\n"
    "<TChannelInheritance>: {\n1 -1 3\n3 -1 1\n}\n<TModeProperty>: {\n2 1 0 0 0\n1 1 0 0 0\n}\n"
    "<TResampling>: {\n1 1\n2 1\n}\n<TOrderSource2Rotor>: {\n1 1 1\n}\n<TBaseOrder>: {\n1 2.5\n}\n"
    "<TInstrumentParam>: {\n5 17 \"H1 of the first mesh\" 1 0 0\n}\n"
    "<TIpCalcParameter>: {\n5 2 1\n5 3 H1-O0.5;H1+O0.5\n5 4 1\n}\n<TAutoModeParam>: {\n7 0 5 0\n}\n"
    "<TIpParamAndStore>: {\n1 17 1 -1 5 -1\n}\n<TGrex10001>: {\n-1 17 -1 -1 -1 -1 1\n}\n"
    "<TSensorGroupList>: {\n1 2\n1 1\n}\n<QType><FBaseName>: \"A name of some length\"\n";

std::vector<std::size_t> RowCounts(const CQtParamStore& store) {
  std::vector<std::size_t> counts;
  for (const auto& table : TableCatalogue::Tables()) counts.push_back(table.row_count(store));
  return counts;
}

std::vector<std::wstring> Lines(const CLake& lake) {
  std::vector<std::wstring> lines;
  for (const auto& line : lake) lines.push_back(line.key() + L"|" + line.value());
  return lines;
}

// What a host has at hand; each round has its own.
struct Host {
  Host() : lake(file.name()), params(&store) {
    AddLine(L"a line that is longer than a short text");
    sea.Save(sea_file.name());
    store.ReadTablesFromCandidateLake();
  }

  void AddLine(const wchar_t* line) {
    CResourceList(&sea, L"a list").AddLineTail()->SetSeaLine(line);
  }

  ScratchFile file{testing_support::version + std::string(small_text)};
  ScratchFile sea_file;
  CLake lake;
  CResourceSea sea;
  CQtParamDistillery store;
  CQtParamInstance params;
};

struct Operation {
  const char* name;
  std::function<void(Host&)> run;
  bool also_for_good = false;  // with a memory that stays exhausted, too
};

void AskAll(const CQtParamInstance& params) {
  for (int element = Clavis::Mode; element <= Clavis::Sensor; ++element) {
    params.ClavisElementName(element, 2049);
  }
  CString text;
  params.FormatLocaChanText(text, 1, 1);
  params.FormatClavisTextNice(QClavis(2049, 17, 1, 1, 5, 7), L" / ");
}

const Operation operations[] = {
    {"ReadLake", [](Host& host) { host.lake.read({}); }, true},
    {"CopyLake", [](Host& host) { host.lake = CLake(host.lake); }},
    {"MergeLakes", [](Host& host) { host.lake.merge(host.lake); }},
    {"ChangeLake",
     [](Host& host) {
       host.lake[L"<TMode>"].push_back(L"a row that is longer than a short text");
       host.lake[L"<TNew>"].push_back(L"3");
     }},
    {"WriteLake", [](Host& host) { static_cast<void>(host.lake.write({})); }},
    {"MakeAndLoad",
     [](Host&) { static_cast<void>(CQtParamDistillery().ReadTablesFromCandidateLake()); }},
    {"LoadAgain", [](Host& host) { host.params.ReadTablesFromCandidateLake(); }, true},
    {"PurgeAndLoad",
     [](Host& host) {
       host.params.PurgeTables();
       host.params.ReadTablesFromCandidateLake();
     }},
    {"Dump", [](Host& host) { host.params.DumpTables(0); }},
    {"Ask", [](Host& host) { AskAll(host.params); }},
    {"NameVirtualModes",
     [](Host& host) {
       for (int id = 2049; id < 60000; id += 2048) host.params.AddVModeName(id, L"made");
     }},
    {"Check", [](Host& host) { static_cast<void>(ParameterCheck::Check(host.lake)); }},
    {"LoadSea", [](Host& host) { host.sea.Load(host.sea_file.name()); }},
    {"SaveSea",
     [](Host& host) {
       host.AddLine(L"another line that is longer than a short text");
       host.sea.Save(host.sea_file.name());
     },
     true},
};

// The nodes of trees come from pools, which keep what they once had: emptied, they ask for memory
// again, and what they hold is no leak.
class Pools {
  using Pool = stdext::allocators::NodePool;

 public:
  // Those in use so far.
  Pools() {
    for (std::size_t size = sizeof(void*); size < 4096; size += sizeof(void*)) {
      if (Empty(Pool::OfSize(size)) > 0) used_.push_back(&Pool::OfSize(size));
    }
  }
  void Empty() const {
    std::for_each(used_.begin(), used_.end(), [](Pool* pool) { Empty(*pool); });
  }

 private:
  static int Empty(Pool& pool) {
    for (int count = 0;; ++count) {
      const std::size_t before = AllocationCount();
      ::operator delete(pool.Take());
      if (AllocationCount() != before) return count;
    }
  }

  std::vector<Pool*> used_;
};

class OutOfMemory : public testing::TestWithParam<Operation> {
 protected:
  // The log stays out of the way, and allocates nothing.
  OutOfMemory() : log_(PrWin::SetSink([](std::wstring_view, auto, auto) {})) {
    testing_support::FillCandidateLake(testing_support::version + std::string(small_text));
    const auto host = std::make_unique<Host>();
    lines_ = Lines(host->lake);
    rows_ = RowCounts(host->store);
  }
  ~OutOfMemory() override {
    CParameterLake::Lake().clear();
    PrWin::SetSink(std::move(log_));
  }

  // Whether memory ran out. What happened then must be bad_alloc, or nothing at all where there is
  // a way around it.
  bool Round(MemoryFailure::Kind kind, std::size_t block) {
    Host host;
    pools_.Empty();
    bool happened = false;
    try {
      const MemoryFailure failure(kind, block);
      GetParam().run(host);
      happened = failure.happened();
    } catch (const std::bad_alloc&) {
      happened = true;
    }
    ExpectUsable(host);
    return happened;
  }

  void ExpectUsable(Host& host) {
    host.lake.read({});
    if (std::string_view(GetParam().name) != "WriteLake") {  // which may have cut its file
      EXPECT_EQ(Lines(host.lake), lines_);
    }
    host.params.PurgeTables();
    EXPECT_TRUE(host.params.ReadTablesFromCandidateLake());
    EXPECT_EQ(RowCounts(host.store), rows_);
    EXPECT_TRUE(host.sea.Load(host.sea_file.name())) << "neither old nor new";
  }

  Pools pools_;

 private:
  PrWin::Sink log_;
  std::vector<std::wstring> lines_;
  std::vector<std::size_t> rows_;
};

TEST_P(OutOfMemory, CostsOneOperationAndNoMemory) {
  for (const auto kind : {MemoryFailure::Kind::one, MemoryFailure::Kind::all_from}) {
    if (kind == MemoryFailure::Kind::all_from && !GetParam().also_for_good) break;
    Round(kind, std::numeric_limits<std::size_t>::max() / 2);  // what is made once is made now
    pools_ = Pools();
    std::size_t block = 0;
    for (bool happened = true; happened; ++block) {
      const std::ptrdiff_t live = LiveBlocks();
      happened = Round(kind, block);
      pools_.Empty();
      ASSERT_EQ(LiveBlocks(), live) << "block " << block;
      ASSERT_FALSE(HasFailure()) << "block " << block;
    }
    EXPECT_GT(block, 1U) << "nothing was refused";
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, OutOfMemory, testing::ValuesIn(operations),
                         [](const auto& operation) { return std::string(operation.param.name); });

// ---- media --------------------------------------------------------------------------------

const std::string marked_text = "\xEF\xBB\xBF<TMode>: {\n\t1 \"H\xC3\xB6he\"\n}\t; <TMode>\nk: v\n";

enum class Failing { reports, throws };

// Bytes up to the place where the medium fails.
LakeReader::Source FailingSource(const std::string& bytes, std::size_t good, Failing how) {
  return [&bytes, good, how,
          place = std::size_t{0}](std::span<char> block) mutable -> std::optional<std::size_t> {
    if (place == good && how == Failing::throws) throw std::runtime_error("medium");
    if (place == good) return std::nullopt;
    const std::size_t count = std::min({block.size(), good - place, std::size_t{7}});
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(place), count, block.begin());
    place += count;
    return count;
  };
}

TEST(FailingMedium, LeavesALakeTheLinesReadUntilThere) {
  const std::vector<std::wstring> whole = Lines(FromBytes(marked_text));
  for (std::size_t good = 0; good <= marked_text.size(); ++good) {
    CLake lake = FromBytes("old\n");
    EXPECT_FALSE(LakeReader::read(lake, FailingSource(marked_text, good, Failing::reports)))
        << good;
    const std::vector<std::wstring> lines = Lines(lake);
    if (lines == std::vector<std::wstring>{L"|old"}) {
      EXPECT_TRUE(good == 1 || good == 2) << "a broken mark alone leaves the lines";
    } else {
      // What a cut sequence began is not there; all lines but the last are whole.
      const std::size_t feeds = static_cast<std::size_t>(std::count(
          marked_text.begin(), marked_text.begin() + static_cast<std::ptrdiff_t>(good), '\n'));
      ASSERT_LE(lines.size(), feeds + 1) << good;
      EXPECT_TRUE(std::equal(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(feeds),
                             whole.begin()))
          << good;
    }

    CLake kept = FromBytes("old\n");
    EXPECT_THROW(LakeReader::read(kept, FailingSource(marked_text, good, Failing::throws)),
                 std::runtime_error);
    EXPECT_EQ(Lines(kept), std::vector<std::wstring>{L"|old"}) << good;
  }
}

// A stream's buffer that takes and gives so many elements.
class FailingBuffer : public std::wstreambuf {
 public:
  FailingBuffer(std::wstring text, std::size_t good) : text_(std::move(text)), good_(good) {}
  const std::wstring& taken() const { return taken_; }

 protected:
  int_type underflow() override {
    if (place_ == text_.size()) return traits_type::eof();
    if (place_ == good_) throw std::runtime_error("medium");
    one_ = text_[place_++];
    setg(&one_, &one_, &one_ + 1);
    return traits_type::to_int_type(one_);
  }
  int_type overflow(int_type element) override {
    if (taken_.size() == good_) return traits_type::eof();
    taken_ += traits_type::to_char_type(element);
    return element;
  }

 private:
  std::wstring text_;
  std::size_t good_;
  std::size_t place_ = 0;
  wchar_t one_ = 0;
  std::wstring taken_;
};

TEST(FailingMedium, ShowsInTheStreamOfALine) {
  const std::wstring text = L"key: value\n";
  const CLake lake = FromBytes("key: value\n");
  for (std::size_t good = 0; good < text.size(); ++good) {
    FailingBuffer in(text, good);
    std::wistream source(&in);
    CLake::CNode node;
    source >> node;
    EXPECT_TRUE(source.bad()) << good;
    EXPECT_EQ(node.key(), good > 3 ? L"key" : L"") << good;

    FailingBuffer out(L"", good);
    std::wostream sink(&out);
    sink << *lake.begin();
    EXPECT_TRUE(sink.bad()) << good;
    EXPECT_EQ(out.taken(), text.substr(0, good)) << good;
  }
}

// A binary table's file that fails at one byte.
class FailingFile {
 public:
  FailingFile(std::string bytes, std::size_t good, Failing how)
      : bytes_(std::move(bytes)), good_(good), how_(how) {}

  unsigned Read(void* buffer, unsigned count) {
    const std::size_t there = std::min<std::size_t>(count, good_ - place_);
    std::memcpy(buffer, bytes_.data() + place_, there);
    place_ += there;
    if (there < count && how_ == Failing::throws) throw std::runtime_error("medium");
    return static_cast<unsigned>(there);
  }
  void Write(const void* buffer, unsigned count) {
    const std::size_t there = std::min<std::size_t>(count, good_ - bytes_.size());
    bytes_.append(static_cast<const char*>(buffer), there);
    if (there < count) throw std::runtime_error("medium");
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
  std::size_t good_;
  std::size_t place_ = 0;
  Failing how_;
};

struct BinaryRow {
  int id = 0;
  wchar_t name[8] = {};

  static constexpr int sizes[] = {4, -8};
  template <class File>
  bool Read(File& file) {
    void* const places[] = {&id, name};
    return DynTables::ReadFromFile(file, sizes, places, 2);
  }
  template <class File>
  void Write(File& file) const {
    const void* const places[] = {&id, name};
    DynTables::WriteToFile(file, sizes, places, 2);
  }
};

constexpr std::size_t binary_row_size = 4 + 4 + 2 * 8;

template <class File>
void WriteTable(File& file) {
  DynTables::QtTableHeader header;
  DynTables::FillHeader(header, 2, 7, 8, 9);
  DynTables::WriteToFile(file, header);
  BinaryRow{1, L"one"}.Write(file);
  BinaryRow{2, L"two"}.Write(file);
}

// The rows that can be read, or -1 without a header.
template <class File>
int ReadTable(File& file) {
  DynTables::QtTableHeader header;
  if (!DynTables::ReadFromFile(file, header)) return -1;
  int rows = 0;
  for (BinaryRow row; row.Read(file);) ++rows;
  return rows;
}

int RowsIn(std::size_t bytes) {
  if (bytes < DynTables::table_header_size) return -1;
  return static_cast<int>((bytes - DynTables::table_header_size) / binary_row_size);
}

TEST(FailingMedium, CutsABinaryTableBehindItsLastWholeRow) {
  FailingFile whole("", 1000, Failing::throws);
  WriteTable(whole);
  const std::size_t size = whole.bytes().size();
  ASSERT_EQ(size, DynTables::table_header_size + 2 * binary_row_size);
  for (std::size_t good = 0; good < size; ++good) {
    FailingFile shortened(whole.bytes(), good, Failing::reports);
    EXPECT_EQ(ReadTable(shortened), RowsIn(good)) << good;
    FailingFile throwing(whole.bytes(), good, Failing::throws);
    EXPECT_THROW(ReadTable(throwing), std::runtime_error) << good;
    FailingFile target("", good, Failing::throws);
    EXPECT_THROW(WriteTable(target), std::runtime_error) << good;
    EXPECT_EQ(target.bytes(), whole.bytes().substr(0, good)) << good;
  }
}

TEST(FailingMedium, IsNoConcernOfADump) {
  testing_support::TestStore data(small_text);
  std::size_t lines = 0;
  for (std::size_t bad = 0; bad < 300; bad += 7) {
    std::size_t line = 0;
    PrWin::Sink before = PrWin::SetSink([&](std::wstring_view, auto, auto) {
      if (line++ == bad) throw std::runtime_error("medium");
    });
    testing::internal::CaptureStderr();
    EXPECT_NO_THROW(data.params.DumpTables(0));
    const std::string rest = testing::internal::GetCapturedStderr();
    PrWin::SetSink(std::move(before));
    EXPECT_EQ(rest.empty(), line <= bad) << "the text goes to standard error instead";
    if (bad == 0) lines = line;
    EXPECT_EQ(line, lines);
  }
  EXPECT_GT(lines, 100U);
}

// ---- files that change their length -------------------------------------------------------

// Reads a real file of a lake; after the first piece the file changes its size.
std::vector<std::wstring> LinesOfChanged(const std::string& bytes, std::size_t new_size) {
  const ScratchFile file(bytes);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(file.path().c_str(), "rb"),
                                                           std::fclose);
  std::setvbuf(in.get(), nullptr, _IONBF, 0);
  CLake lake;
  bool changed = false;
  EXPECT_TRUE(LakeReader::read(lake, [&](std::span<char> block) -> std::optional<std::size_t> {
    const std::size_t count =
        std::fread(block.data(), 1, std::min<std::size_t>(4, block.size()), in.get());
    if (!changed) fs::resize_file(file.path(), new_size);
    changed = true;
    return count;
  }));
  return Lines(lake);
}

TEST(ChangingFile, GivesALakeWhatWasThere) {
  const std::string bytes = "1 a\n2 b\n3 c\n";
  using Expected = std::vector<std::wstring>;
  EXPECT_EQ(LinesOfChanged(bytes, 0), (Expected{L"|1 a"}));
  EXPECT_EQ(LinesOfChanged(bytes, 6), (Expected{L"|1 a", L"|2"}));
  const Expected grown = LinesOfChanged(bytes, 100);
  ASSERT_EQ(grown.size(), 4U);
  EXPECT_EQ(grown[3], L"|" + std::wstring(100 - bytes.size(), L'\0'));
}

TEST(ChangingFile, GivesABinaryTableItsWholeRows) {
  const ScratchFile file;
  CFile target(file.name(), CFile::modeWrite);
  WriteTable(target);
  target.Close();
  const std::string whole = file.bytes();
  for (std::size_t size = 0; size <= whole.size() + 2 * binary_row_size; size += 3) {
    std::ofstream(file.path(), std::ios::binary | std::ios::trunc) << whole;
    CFile source(file.name(), CFile::modeRead);
    fs::resize_file(file.path(), size);
    EXPECT_EQ(ReadTable(source), RowsIn(size)) << size;
  }
}

// ---- saving -------------------------------------------------------------------------------

constexpr int saved = 0;
constexpr int not_saved = 1;

// Saves in a process of its own under a limit that takes effect somewhere on the way. Its exit
// status, or minus the signal that ended it.
int SaveUnder(const CResourceSea& sea, const std::wstring& name, int resource, rlim_t limit,
              bool is_deadly) {
  const pid_t child = fork();
  if (child == 0) {
    PrWin::SetSink([](std::wstring_view, auto, auto) {});
    std::signal(SIGXFSZ, is_deadly ? SIG_DFL : SIG_IGN);
    const rlimit limits{limit, limit};
    setrlimit(static_cast<__rlimit_resource>(resource), &limits);
    _exit(sea.Save(name) ? saved : not_saved);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// The scratch folder, without what a save that was killed leaves behind.
std::size_t RemoveRemains(const std::string& path) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path())) {
    const std::string name = entry.path().string();
    if (name.starts_with(path) && name.ends_with(".new")) count += fs::remove(entry.path());
  }
  return count;
}

TEST(InterruptedSave, LeavesTheOldSeaOrTheNewOne) {
  CResourceSea sea;
  CResourceList list(&sea, L"a list");
  list.AddLineTail()->SetSeaLine(L"old");
  const ScratchFile file;
  ASSERT_TRUE(sea.Save(file.name()));
  const std::string old = file.bytes();
  list.AddLineTail()->SetSeaLine(std::wstring(10000, L'n').c_str());
  const ScratchFile other;
  ASSERT_TRUE(sea.Save(other.name()));
  const auto size = static_cast<rlim_t>(other.bytes().size());

  for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{4095}, rlim_t{4096}, size - 1}) {
    EXPECT_EQ(SaveUnder(sea, file.name(), RLIMIT_FSIZE, limit, false), not_saved) << limit;
    EXPECT_EQ(file.bytes(), old) << limit;
    EXPECT_EQ(RemoveRemains(file.path()), 0U) << limit;
    EXPECT_EQ(SaveUnder(sea, file.name(), RLIMIT_FSIZE, limit, true), -SIGXFSZ) << limit;
    EXPECT_EQ(file.bytes(), old) << limit;
    EXPECT_EQ(RemoveRemains(file.path()), 1U) << limit;
  }
  EXPECT_EQ(SaveUnder(sea, file.name(), RLIMIT_NOFILE, 0, false), not_saved) << "can't be opened";
  EXPECT_EQ(file.bytes(), old);
  EXPECT_EQ(SaveUnder(sea, file.name(), RLIMIT_FSIZE, size, true), saved);
  EXPECT_EQ(file.bytes(), other.bytes());
}

}  // namespace
