// Lakes and binary tables on a medium that fails at each of their bytes, and files that grow or
// shrink while they are read: what was whole is there, and nothing else.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "full_disk.h"
#include "interfaces/text/File.h"
#include "lake/LakeReader.h"
#include "lake_bytes.h"
#include "tables/TableFile.h"

namespace {

namespace fs = std::filesystem;

const std::string marked_text = "\xEF\xBB\xBF<TMode>: {\n\t1 \"H\xC3\xB6he\"\n}\t; <TMode>\nk: v\n";

std::vector<std::wstring> Values(const CLake& lake) {
  std::vector<std::wstring> values;
  for (const CLake::CNode& line : lake) values.push_back(line.value());
  return values;
}

// Until the failure the medium is a file that ends there, but for a broken mark.
TEST(FailingMedium, LeavesALakeTheLinesReadUntilThere) {
  for (std::size_t good = 0; good <= marked_text.size(); ++good) {
    SCOPED_TRACE(good);
    const std::string front = marked_text.substr(0, good);
    CLake lake = FromBytes("old\n");
    EXPECT_FALSE(LakeReader::read(lake, Medium{7, Medium::End::reports_failure, front}));
    EXPECT_EQ(ToBytes(lake), ToBytes(FromBytes(good == 1 || good == 2 ? "old\n" : front)));

    CLake kept = FromBytes("old\n");
    EXPECT_THROW(LakeReader::read(kept, Medium{7, Medium::End::throws, front}), std::runtime_error);
    EXPECT_EQ(Values(kept), std::vector<std::wstring>{L"old"});
  }
}

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

std::string WholeTable() {
  const ScratchFile file;
  CFile target(file.name(), CFile::modeWrite);
  WriteTable(target);
  target.Close();
  return file.bytes();
}

// A binary table's file that fails at one byte.
struct FailingFile {
  std::string bytes;
  std::size_t place = 0;

  unsigned Read(void* buffer, unsigned count) {
    if (bytes.size() - place < count) throw std::runtime_error("medium");
    std::memcpy(buffer, bytes.data() + place, count);
    place += count;
    return count;
  }
};

TEST(FailingMedium, ThatThrowsIsHeardByTheReaderOfABinaryTable) {
  const std::string whole = WholeTable();
  ASSERT_EQ(whole.size(), DynTables::table_header_size + 2 * binary_row_size);
  for (std::size_t good = 0; good <= whole.size(); ++good) {
    FailingFile file{whole.substr(0, good)};
    EXPECT_THROW(ReadTable(file), std::runtime_error) << good;
  }
  if (access("/proc/self/mem", R_OK) != 0) GTEST_SKIP() << "no file is there that can't be read";
  CFile failing(L"/proc/self/mem", CFile::modeRead);  // a short read at its first byte
  EXPECT_EQ(ReadTable(failing), -1);
}

// Files that are written over longer ones; the numbers of bytes that the disk has room for.
TEST(FullDisk, KeepsTheFrontOfALakeAndHarmsNoMoreThanTheFile) {
  std::string large = "\xEF\xBB\xBF";
  while (large.size() < 200'000) large += "<T>: {\n\t1 \"H\xC3\xB6he\"\n}\t; <T>\n";
  for (const auto& [text, step] : {std::pair(marked_text, 1), std::pair(large, 9973)}) {
    const CLake lake = FromBytes(text);
    const ScratchFile file;
    for (std::size_t room = 0; room < text.size(); room += static_cast<std::size_t>(step)) {
      SCOPED_TRACE(room);
      std::ofstream(file.path(), std::ios::binary) << text << "old";
      const auto write_into = [&] {
        const FullDisk disk(room);
        return lake.write(file.name());
      };
      EXPECT_TRUE(write_into()) << "only a file that can't be opened is told";
      EXPECT_TRUE(file.bytes() == text.substr(0, room));
      EXPECT_TRUE(lake.write({}) && file.bytes() == text) << "there is room again";
    }
  }
}

TEST(FullDisk, KeepsTheFrontOfABinaryTableAndIsTold) {
  const std::string whole = WholeTable();
  const ScratchFile file;
  const auto write = [&] {
    CFile target(file.name(), CFile::modeWrite);
    WriteTable(target);
    target.Close();
  };
  for (std::size_t room = 0; room < whole.size(); ++room) {
    const auto write_into = [&] {
      const FullDisk disk(room);
      write();
    };
    EXPECT_THROW(write_into(), CFileException) << room;
    EXPECT_EQ(file.bytes(), whole.substr(0, room));
    write();
    EXPECT_EQ(file.bytes(), whole);
  }
}

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
  return Values(lake);
}

TEST(ChangingFile, GivesALakeWhatWasThere) {
  const std::string bytes = "1 a\n2 b\n3 c\n";
  using Expected = std::vector<std::wstring>;
  EXPECT_EQ(LinesOfChanged(bytes, 0), (Expected{L"1 a"}));
  EXPECT_EQ(LinesOfChanged(bytes, 6), (Expected{L"1 a", L"2"}));
  const Expected grown = LinesOfChanged(bytes, 100);
  ASSERT_EQ(grown.size(), 4U);
  EXPECT_EQ(grown[3], std::wstring(100 - bytes.size(), L'\0'));
}

TEST(ChangingFile, GivesABinaryTableItsWholeRows) {
  const ScratchFile file;
  const std::string whole = WholeTable();
  for (std::size_t size = 0; size <= whole.size() + 2 * binary_row_size; ++size) {
    std::ofstream(file.path(), std::ios::binary | std::ios::trunc) << whole;
    CFile source(file.name(), CFile::modeRead);
    fs::resize_file(file.path(), size);
    EXPECT_EQ(ReadTable(source), RowsIn(size)) << size;
  }
}

}  // namespace
