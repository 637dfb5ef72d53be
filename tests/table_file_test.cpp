// Binary table files: the bytes are the same on every platform, and a damaged file is told.
#include "interfaces/text/File.h"
#include "support.h"
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

  const std::string old = Word(0xFFFFFFFF) + magic + Word(1) + Word(9);  // without two parameters
  for (const std::string& bytes : {written, old}) {
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
      Bytes cut{bytes.substr(0, length)};
      EXPECT_EQ(DynTables::ReadFromFile(cut, header), length == bytes.size()) << length;
    }
    const auto& [size, unused, version, param1, param2, param3] = header;
    const bool is_old = bytes == old;
    EXPECT_EQ(
        (std::array{size, version, param1, param2, param3}),
        (is_old ? std::array{~0U, 1U, 1U, 1U, 9U} : std::array{28U, 2U, 7U, 8U, 0x01020304U}));
    Bytes wrong{bytes};
    wrong.bytes[11] = '-';
    EXPECT_FALSE(DynTables::ReadFromFile(wrong, header));
  }
}

TEST(TableFile, FieldsAreBlocksAndTextsOfTwoBytesACharacter) {
  const int sizes[] = {4, -200, 0, -2};
  float number = 1.5F;
  wchar_t name[200] = L"Pr\u00FCf \xD834\xDD1E";
  name[199] = 0xABCD;  // behind the terminator, and kept
  wchar_t two[2] = {L'a', L'b'};
  void* const fields[] = {&number, name, nullptr, two};
  Bytes file;
  DynTables::WriteToFile(file, sizes, fields, 4);
  ASSERT_EQ(file.bytes.size(), 4U + 4 + 400 + 4 + 4);
  EXPECT_EQ(file.bytes.substr(4, 10), Word(200) + std::string("P\0r\0\xFC\0", 6));
  EXPECT_EQ(file.bytes.substr(406, 10), std::string("\xCD\xAB\2\0\0\0a\0b\0", 10));
  for (std::size_t length = 0; length <= file.bytes.size(); ++length) {
    number = 0;
    std::ranges::fill(name, L'-');
    Bytes cut{file.bytes.substr(0, length)};
    EXPECT_EQ(DynTables::ReadFromFile(cut, sizes, fields, 4), length == file.bytes.size())
        << length;
  }
  EXPECT_EQ(number, 1.5F);
  EXPECT_STREQ(name, L"Pr\u00FCf \xD834\xDD1E");
  EXPECT_EQ(std::wstring(two, 2) + name[199], L"ab\xABCD");
  for (const unsigned length : {0U, 1U, 200U, 201U, 0xFFFFFFFFU}) {  // is only tested
    Bytes other{Word(length) + std::string("x\0y\0", 4)};
    EXPECT_EQ(DynTables::ReadFromFile(other, &sizes[3], &fields[3], 1), length <= 200) << length;
  }
}

TEST(TableFile, AFileOnDiskTellsWhatItCannotDo) {
  const ScratchFile scratch;
  CFile written(scratch.name(), CFile::modeWrite);
  written.Write("abc", 3);
  written.Close();
  written.Close();
  EXPECT_THROW(written.Write("d", 1), CFileException);
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
