// From a file to a data base: the library, the bare limit and SQLite.

#include <stdexcept>

#include "Benchmarks.h"
#include "RowParser.h"
#include "Sqlite.h"

using namespace kestrin;

namespace benchmarks {

DataBase::DataBase(const std::string& file) {
  CParameterLake::Lake().read(Text::FromUtf8(file));
  if (!Params().ReadTablesFromCandidateLake()) throw std::runtime_error("no data base: " + file);
}

namespace {

void RegisterLoad(const std::string& what, const TemporaryFile& file, int repetitions,
                  Heap heap = Heap::kept) {
  RegisterWork("load/" + what + "/lKestrinDb", repetitions, heap,
               [&file] { return std::make_unique<DataBase>(file.Name()); });
}

void RegisterRivals(const std::string& what, const TemporaryFile& file, int repetitions,
                    Heap heap = Heap::kept) {
  RegisterWork("load/" + what + "/bare limit", repetitions, heap, [&file] {
    auto tables = std::make_unique<FlatTables>();
    RowParser(*tables).Parse(ReadFile(file.Name()));
    return tables;
  });
  RegisterWork("load/" + what + "/SQLite", repetitions, heap, [&file] {
    auto data_base = std::make_unique<SqliteDataBase>();
    data_base->Load(ReadFile(file.Name()));
    return data_base;
  });
}

}  // namespace

void RegisterLoads(const Files& files) {
  RegisterLoad("25 thousand", files.small, 15);
  RegisterLoad("250 thousand", files.medium, 15);
  RegisterRivals("250 thousand", files.medium, 15);
  RegisterLoad("250 thousand, first of a process", files.medium, 9, Heap::given_back);
  RegisterRivals("250 thousand, first of a process", files.medium, 9, Heap::given_back);
  RegisterLoad("250 thousand, shuffled", files.shuffled, 15);
  RegisterLoad("250 thousand, bad lines", files.bad, 15);
  RegisterLoad("2.5 million", files.large, 5);
}

}  // namespace benchmarks
