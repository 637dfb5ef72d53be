// Binary table files: the bytes are the same on every platform, and a damaged file is told.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "interfaces/text/File.h"
#include "lake_bytes.h"
#include "tables/TableFile.h"

namespace {

// A file in memory.
struct Bytes {
  std::string bytes;
  std::size_t place = 0;

  unsigned Read(void* buffer, unsigned count) {
    const std::size_t got = bytes.copy(static_cast<char*>(buffer), count, place);
    place += got;
    return static_cast<unsigned>(got);
  }
  void Write(const void* buffer, unsigned count) {
    bytes.append(static_cast<const char*>(buffer), count);
  }
};

std::string Word(unsigned value) {
  std::string word;
  for (int i = 0; i < 4; ++i) word += static_cast<char>(value >> (8 * i));
  return word;
}

const std::string magic = "++++++++";

TEST(TableFile, HeadersAreReadAsTheyWereWritten) {
  DynTables::QtTableHeader header;
  DynTables::FillHeader(header, 2, 7, 8, 0x01020304);
  Bytes file;
  DynTables::WriteToFile(file, header);
  const std::string written = Word(28) + magic + Word(2) + Word(7) + Word(8) + Word(0x01020304);
  EXPECT_EQ(file.bytes, written);

  using Numbers = std::array<unsigned, 5>;  // size, version, parameters
  const std::pair<std::string, Numbers> cases[] = {
      {written, {28, 2, 7, 8, 0x01020304}},
      {Word(0xFFFFFFFF) + magic + Word(1) + Word(9), {0xFFFFFFFF, 1, 1, 1, 9}},
      {Word(20) + magic + Word(0) + Word(9), {20, 0, 1, 1, 9}}};
  for (const auto& [bytes, numbers] : cases) {
    DynTables::QtTableHeader read;
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
      Bytes cut{bytes.substr(0, length)};
      EXPECT_EQ(DynTables::ReadFromFile(cut, read), length == bytes.size()) << length;
    }
    EXPECT_EQ(
        (Numbers{read.header_size, read.format_version, read.param1, read.param2, read.param3}),
        numbers);
    for (std::size_t i = 4; i < 12; ++i) {
      Bytes wrong{bytes};
      wrong.bytes[i] = '-';
      EXPECT_FALSE(DynTables::ReadFromFile(wrong, read)) << i;
    }
  }
}

TEST(TableFile, FieldsAreBlocksAndTextsOfTwoBytesACharacter) {
  const int sizes[] = {4, -200, 0, -2};
  const float number = 1.5F;
  wchar_t name[200] = L"Pr\u00FCf \xD834\xDD1E";
  name[199] = 0xABCD;  // behind the terminator, and kept
  const wchar_t two[2] = {L'a', L'b'};
  const void* const fields[] = {&number, name, nullptr, two};
  Bytes file;
  DynTables::WriteToFile(file, sizes, fields, 4);
  ASSERT_EQ(file.bytes.size(), 4U + 4 + 400 + 4 + 4);
  EXPECT_EQ(file.bytes.substr(4, 10), Word(200) + std::string("P\0r\0\xFC\0", 6));
  EXPECT_EQ(file.bytes.substr(406, 10), std::string("\xCD\xAB\2\0\0\0a\0b\0", 10));

  float number_read = 0;
  wchar_t name_read[200] = {};
  wchar_t two_read[2] = {};
  void* const places[] = {&number_read, name_read, nullptr, two_read};
  for (std::size_t length = 0; length <= file.bytes.size(); ++length) {
    Bytes cut{file.bytes.substr(0, length)};
    EXPECT_EQ(DynTables::ReadFromFile(cut, sizes, places, 4), length == file.bytes.size())
        << length;
  }
  EXPECT_EQ(number_read, number);
  EXPECT_TRUE(std::ranges::equal(name_read, name));
  EXPECT_TRUE(std::ranges::equal(two_read, two));
}

TEST(TableFile, TheLengthInTheFileIsOnlyTested) {
  const int size = -2;
  wchar_t text[2];
  void* const place = text;
  for (const unsigned length : {0U, 1U, 200U, 201U, 0xFFFFFFFFU}) {
    Bytes file{Word(length) + std::string("x\0y\0", 4)};
    EXPECT_EQ(DynTables::ReadFromFile(file, &size, &place, 1), length <= 200) << length;
  }
  const int wide = -201;
  wchar_t long_text[201] = L"long";
  const void* const source = long_text;
  void* const target = long_text;
  Bytes file;
  DynTables::WriteToFile(file, &wide, &source, 1);
  EXPECT_EQ(file.bytes.size(), 4U + 402);
  EXPECT_FALSE(DynTables::ReadFromFile(file, &wide, &target, 1));
}

TEST(TableFile, AFileOnDiskTellsWhatItCannotDo) {
  const ScratchFile scratch;
  const auto write_twice = [](const CString& name) {
    CFile file(name, CFile::modeWrite);
    file.Write("abc", 3);
    file.Close();
    file.Close();
    file.Write("d", 1);
  };
  EXPECT_THROW(write_twice(scratch.name()), CFileException);
  EXPECT_EQ(scratch.bytes(), "abc");
  CFile file(scratch.name(), CFile::modeRead);
  char read[5] = "----";
  EXPECT_EQ(file.Read(read, 4), 3U);
  EXPECT_STREQ(read, "abc-");

  CFile full(L"/dev/full", CFile::modeWrite);
  EXPECT_THROW((full.Write("abc", 3), full.Close()), CFileException);
  // A zero doesn't cut the name to that of another file.
  EXPECT_THROW(CFile(scratch.name() + L'\0' + L".tmp", CFile::modeWrite), CFileException);
  EXPECT_EQ(scratch.bytes(), "abc");
  for (const wchar_t* name : {L"/nowhere/at/all", L"/"}) {
    EXPECT_THROW(CFile(name, CFile::modeRead), CFileException);
  }
}

}  // namespace
