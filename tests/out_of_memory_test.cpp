// What a host loses when memory runs out, at any allocation: that one operation, and nothing else.
#include <limits>
#include <new>

#include "queries.h"
#include "support.h"
#include "tables/Allocators.h"

namespace {

// The memory of this thread, in blocks from operator new. Plain numbers: they are ready before the
// first of them.
constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
thread_local std::size_t taken = 0;
thread_local std::ptrdiff_t live = 0;
thread_local std::size_t first_refused = never;
thread_local std::size_t end_refused = never;

void* Take(std::size_t size) noexcept {
  const std::size_t number = taken++;
  if (number >= first_refused && number < end_refused) return nullptr;
  void* const block = std::malloc(std::max<std::size_t>(size, 1));
  if (block != nullptr) ++live;
  return block;
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* block = Take(size)) return block;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Take(size); }
void operator delete(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept { operator delete(block); }
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace {

constexpr const char* small_text =
    "<TMode>: {\n1 \"Run up\"\nx\n}\n<TChannel>: {\n1 Raw\n}\n<TChannelInheritance>: {\n1 -1 3\n}\n"
    "<TModeProperty>: {\n2 1 0 0 0\n1 1 0 0 0\n}\n<TResampling>: {\n1 1\n}\n"
    "<TOrderSource2Rotor>: {\n1 1 1\n}\n<TBaseOrder>: {\n1 2.5\n}\n"
    "<TInstrumentParam>: {\n5 17 \"H1 of the first mesh\" 1 0 0\n}\n"
    "<TIpCalcParameter>: {\n5 2 1\n5 3 H1-O0.5;H1+O0.5\n5 4 1\n}\n<TAutoModeParam>: {\n7 0 5 0\n}\n"
    "<TIpParamAndStore>: {\n1 17 1 -1 5 -1\n}\n<TGrex10001>: {\n-1 17 -1 -1 -1 -1 1\n}\n"
    "<TSensorGroupList>: {\n1 2\n1 1\n}\n<QType><FBaseName>: name\n";

constexpr const char* small_sea =
    "sea 2\nlist a list\n- a line that is longer than a short text\nend\n";

// Each line of a lake, and the number of rows of each table.
std::wstring Content(const CLake& lake, const CQtParamDistillery& store) {
  std::wstring text;
  for (const auto& line : lake) text += line.key() + L"|" + line.value() + L"\n";
  for (const auto& table : TableCatalogue::Tables()) {
    text += std::to_wstring(table.row_count(store)) + L" ";
  }
  return text;
}

// What a host has at hand; each round has its own.
struct Host {
  Host() : lake(file.name()), params(&store) {
    sea.Load(sea_file.name());
    store.ReadTablesFromCandidateLake();
  }

  ScratchFile file{version + std::string(small_text)};
  ScratchFile sea_file{small_sea};
  CLake lake;
  CResourceSea sea;
  CQtParamDistillery store;
  CQtParamInstance params;
};

struct Operation {
  const char* name;
  std::function<void(Host&)> run;
};

const Operation operations[] = {
    {"ReadLake", [](Host& host) { host.lake.read({}); }},
    {"ReadNoFile", [](Host& host) { host.lake.read(L"/nowhere"); }},
    {"MakeNodes", [](Host& host) { static_cast<void>(host.lake.begin()); }},
    {"CopyLake",
     [](Host& host) {
       static_cast<void>(host.lake.begin());
       host.lake = CLake(host.lake);
     }},
    {"MergeLakes",
     [](Host& host) {
       const auto lines = std::distance(host.lake.begin(), host.lake.end());
       try {
         host.lake.merge(host.lake);
       } catch (const std::bad_alloc&) {
         const auto left = std::distance(host.lake.begin(), host.lake.end());
         EXPECT_TRUE(left == lines || left == 0) << left;
         throw;
       }
     }},
    {"ChangeLake",
     [](Host& host) {
       host.lake[L"<TMode>"].push_back(L"a row that is longer than a short text");
       host.lake[L"<TNew>"].push_back(L"3");
     }},
    {"CopyAndReadLine",
     [](Host& host) {
       CLake::CNode line = *host.lake.begin();
       line = *std::next(host.lake.begin());
       const std::wstring before = line.value();
       try {
         std::wistringstream(L"a key that is long: a value that is long") >> line;
       } catch (const std::bad_alloc&) {
         EXPECT_EQ(line.value(), before);
         throw;
       }
     }},
    {"WriteLake", [](Host& host) { static_cast<void>(host.lake.write({})); }},
    {"MakeAndLoad",
     [](Host&) { static_cast<void>(CQtParamDistillery().ReadTablesFromCandidateLake()); }},
    {"LoadAgain", [](Host& host) { host.params.ReadTablesFromCandidateLake(); }},
    {"Dump", [](Host& host) { host.params.DumpTables(0); }},
    {"Ask",
     [](Host& host) {
       queries::AskAll(host.params, std::array{1, 2049, 5}, L"H1;1");
     }},
    {"NameVirtualModes",
     [](Host& host) {
       for (int id = 2049; id < 60000; id += 2048) host.params.AddVModeName(id, L"made");
     }},
    {"Check", [](Host& host) { static_cast<void>(ParameterCheck::Check(host.lake)); }},
    {"LoadSea", [](Host& host) { host.sea.Load(host.sea_file.name()); }},
    {"SaveSea", [](Host& host) {
       CResourceList(&host.sea, L"a list").AddLineTail()->SetSeaLine(L"another line");
       host.sea.Save(host.sea_file.name());
     }}};

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
      const std::size_t before = taken;
      ::operator delete(pool.Take());
      if (taken != before) return count;
    }
  }

  std::vector<Pool*> used_;
};

class OutOfMemory : public testing::TestWithParam<Operation> {
 protected:
  // The log stays out of the way, and allocates nothing.
  OutOfMemory() : log_(PrWin::SetSink([](std::wstring_view, auto, auto) {})) {
    FillCandidateLake(version + std::string(small_text));
    const auto host = std::make_unique<Host>();
    content_ = Content(host->lake, host->store);
  }
  ~OutOfMemory() override {
    CParameterLake::Lake().clear();
    PrWin::SetSink(std::move(log_));
  }

  // Whether memory ran out, for so many blocks from that one on. What happened then must be
  // bad_alloc, or nothing at all where there is a way around it.
  bool Round(std::size_t block, std::size_t count) {
    Host host;
    pools_.Empty();
    first_refused = taken + block;
    end_refused = first_refused + std::min(count, never - first_refused);
    bool happened = false;
    try {
      GetParam().run(host);
      happened = taken > first_refused;
    } catch (const std::bad_alloc&) {
      happened = true;
    }
    first_refused = end_refused = never;
    ExpectUsable(host);
    return happened;
  }

  // What a section holds is what stands between its brackets.
  static void ExpectLinked(const CLake& lake) {
    const auto same = [](const CLake::CNode& a, const CLake::CNode& b) {
      return a.named_size() == b.named_size() && a.unnamed_size() == b.unnamed_size();
    };
    const CLake linked_anew(lake);
    EXPECT_TRUE(std::equal(lake.begin(), lake.end(), linked_anew.begin(), linked_anew.end(), same));
    EXPECT_TRUE(same(lake.root(), linked_anew.root()));
  }

  void ExpectUsable(Host& host) {
    ExpectLinked(host.lake);
    host.lake.read(file_.name());
    host.params.PurgeTables();
    EXPECT_TRUE(host.params.ReadTablesFromCandidateLake());
    EXPECT_EQ(Content(host.lake, host.store), content_);
    EXPECT_TRUE(host.sea.Load(host.sea_file.name())) << "neither old nor new";
  }

  Pools pools_;

 private:
  PrWin::Sink log_;
  const ScratchFile file_{version + std::string(small_text)};
  std::wstring content_;
};

TEST_P(OutOfMemory, CostsOneOperationAndNoMemory) {
  for (const std::size_t count : {std::size_t{1}, never}) {
    Round(never / 2, 1);  // what is made once is made now
    pools_ = Pools();
    std::size_t block = 0;
    for (bool happened = true; happened; ++block) {
      const std::ptrdiff_t before = live;
      happened = Round(block, count);
      pools_.Empty();
      ASSERT_EQ(live, before) << "block " << block;
      ASSERT_FALSE(HasFailure()) << "block " << block;
    }
    EXPECT_GT(block, 1U) << "nothing was refused";
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, OutOfMemory, testing::ValuesIn(operations),
                         [](const auto& operation) { return std::string(operation.param.name); });

}  // namespace
