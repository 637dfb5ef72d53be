// Files in, files out: if this breaks, a parameter file is misread, damaged, or crashes its host.
#include <locale>

#include "lake/Utf8ToUcs2.h"
#include "support.h"

namespace {

const std::string mark = "\xEF\xBB\xBF";
using namespace std::string_literals;

std::wstring Texts(const CLake::CNode& line) {
  return line.key() + L"|" + line.value() + L"|" + line.comment();
}

// The lines of a lake, one after the other.
std::wstring LineTexts(const CLake& lake) {
  std::wstring text;
  for (const auto& line : lake) text += Texts(line) + L"/";
  return text;
}

TEST(LakeFile, BytesBecomeLines) {
  const struct {
    std::string bytes;
    std::wstring lines;
    Refusal::Reason reason = Refusal::none;
    int line = 0;
  } cases[] = {
      {"a\r\nb\n", L"|a|/|b|/"},
      {"\xE4\xFF\x80: \xC3\xA4", L"\u00E4\u00FF\x80|\u00C3\u00A4|/"},
      {"a\xEF\xBB\xBF", L"|a\u00EF\u00BB\u00BF|/"},
      {"a\0b\n\0"s, L"|a\0b|/|\0|/"s},
      {mark, L""},
      {mark + mark + "\xC3\xA4: \xE2\x82\xAC\xF0\x9F\x98\x80\n",
       L"\xFEFF\u00E4|\u20AC\xD83D\xDE00|/"},
      {mark + "\xC1\x81\xF8\x80\x80\x80\x81\xFC\x80\x80\x80\x80\x82", L"|A\x01\x02|/"},
      // No continuation, no lead, beyond U+10FFFF, cut by the end; nothing behind it is read.
      {mark + "a\nbc\xC3(d\ne\n", L"|a|/|bc|/", Refusal::broken_text, 2},
      {mark + "a\n\xF4\x90\x80\x80\ne\n", L"|a|/", Refusal::broken_text, 2},
      {mark + "a\n\xFF\x80\x80\x80\x80\x80\ne\n", L"|a|/", Refusal::broken_text, 2},
      {mark + "a\nb\xF0\x9F\x98", L"|a|/|b|/", Refusal::broken_text, 2},
      {"\xEF", L"|old|/", Refusal::broken_mark, 1},
      {"\xEF\xBF\xBB", L"|old|/", Refusal::broken_mark, 1}};
  for (const auto& c : cases) {
    for (const std::size_t piece : {1U, 9999U}) {
      SCOPED_TRACE(c.bytes);
      CLake lake = FromBytes("old");
      EXPECT_EQ(kestrin::LakeReader::read(lake, Medium{piece, Medium::End::of_file, c.bytes}),
                c.reason != Refusal::broken_mark);
      EXPECT_EQ(LineTexts(lake), c.lines);
      EXPECT_EQ(lake.last_refusal().reason, c.reason);
      EXPECT_EQ(lake.last_refusal().line, c.line);
    }
  }
}

// Until the failure the medium is a file that ends there, but for a broken mark.
TEST(LakeFile, AMediumThatFailsLeavesTheLinesReadUntilThere) {
  const std::string whole = mark + "<TMode>: {\n\t1 \"H\xC3\xB6he\"\n}\t; <TMode>\nk: v\n";
  for (std::size_t good = 0; good <= whole.size(); ++good) {
    SCOPED_TRACE(good);
    const std::string front = whole.substr(0, good);
    CLake lake = FromBytes("old");
    EXPECT_THROW(kestrin::LakeReader::read(lake, Medium{7, Medium::End::throws, front}),
                 std::runtime_error);
    EXPECT_EQ(LineTexts(lake), L"|old|/");
    EXPECT_FALSE(kestrin::LakeReader::read(lake, Medium{7, Medium::End::reports_failure, front}));
    EXPECT_EQ(LineTexts(lake), LineTexts(FromBytes(good == 1 || good == 2 ? "old" : front)));
  }
  EXPECT_FALSE(CLake().read(L"/proc/self/mem")) << "it fails at once";
}

TEST(LakeFile, AFullDiskKeepsTheFrontAndHarmsNoMoreThanTheFile) {
  const CLake lake = FromBytes(std::string(100'000, 'k') + ": 1\n");
  const std::string whole = ToBytes(lake);
  for (const std::size_t room : {0U, 2U, 4096U, 99'999U}) {
    const ScratchFile file(whole + "old");
    const auto write = [&] {
      const FullDisk disk(room);
      return lake.write(file.name());
    };
    EXPECT_TRUE(write()) << "only a file that can't be opened is told";
    EXPECT_TRUE(file.bytes() == whole.substr(0, room)) << room;
    EXPECT_TRUE(lake.write({}) && file.bytes() == whole) << "there is room again";
  }
}

TEST(LakeFile, WhatCannotBeOpenedOrReadLosesNothing) {
  const CString missing = Text::FromUtf8(testing::TempDir()) + L"there/is/none";
  const ScratchFile file("b: 2\n");
  const CString cut = file.name() + L'\0' + L"x";
  CLake lake = FromBytes("a: 1\n");
  EXPECT_TRUE(lake.read(missing));
  EXPECT_EQ(lake.filename(), missing);
  EXPECT_EQ(lake.last_refusal().sentence, L"The file '" + missing + L"' doesn't exist.");
  EXPECT_TRUE(lake.read(L""));
  EXPECT_TRUE(lake.read(Text::FromUtf8(testing::TempDir())));
  EXPECT_EQ(lake.last_refusal().reason, Refusal::folder);
  EXPECT_TRUE(lake.read(cut));
  EXPECT_EQ(lake.last_refusal().reason, Refusal::unopened);
  for (const CString& name : {CString(), missing, cut}) EXPECT_FALSE(lake.write(name));
  EXPECT_EQ(int(lake[L"a"]), 1);
  EXPECT_EQ(file.bytes(), "b: 2\n");
  EXPECT_EQ(int(CLake(file.name())[L"b"]), 2);
}

TEST(LakeFile, WrittenAndReadBackIsTheSame) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"   a: 1\r\n  <T>: {\n{\n1\n}\n\n; c\n} ;d\n}\nout\n{\n{\nx\n",
       mark + "a: 1\n<T>: {\n\t{\n\t\t1\n\t}\n\t\n\t\t; c\n}\t; d\n}\nout\n{\n{\nx\n"},
      {mark + "\xF0\x9F\x98\x80" + mark, mark + "\xF0\x9F\x98\x80" + mark + "\n"},
      {mark + "\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBDx\n\xED\xA0\xBD\nz",  // a pair, then lone ones
       mark + "\xF0\x9F\x98\x80 \xEF\xBF\xBDx\n\xEF\xBF\xBD\nz\n"},
  };
  for (const auto& [read, written] : cases) {
    CLake lake = FromBytes(read);
    EXPECT_EQ(ToBytes(lake), written);
    lake.root();
    EXPECT_EQ(ToBytes(lake), written) << "by its nodes";
    EXPECT_EQ(ToBytes(FromBytes(written)), written);
  }
  CLake beyond;
  beyond.root().push_back(std::wstring(L"a") + static_cast<wchar_t>(0x10000) + L'\xDC00');
  EXPECT_EQ(ToBytes(beyond), mark + "a\xEF\xBF\xBD\xED\xB0\x80\n");
}

// Characters of every length at every place of a block's edge: of ours, and of the buffers of the
// platform's streams, which the facet serves as well.
TEST(LakeFile, MegabytesOfManyByteCharactersComeOutTheSame) {
  std::string bytes = mark;
  for (std::size_t i = 0; i < 30000; ++i) {
    bytes += std::string(i % 71, 'a') + "\u00E4\u20AC\uFEFF\U0001F600\n";
  }
  const CLake lake = FromBytes(bytes);
  EXPECT_TRUE(ToBytes(lake) == bytes);
  const std::locale locale(std::locale::classic(), new lake_encoding::utf8toucs2);
  const ScratchFile file;
  std::wofstream out;
  out.imbue(locale);
  out.open(file.path(), std::ios::binary);
  for (const auto& node : lake) out << node;
  out.close();
  EXPECT_TRUE(file.bytes() == bytes);
  std::wifstream in;
  in.imbue(locale);
  in.open(file.path(), std::ios::binary);
  EXPECT_EQ(in.get(), 0xFEFF);
  CLake::CNode node;
  for (const auto& line : lake) ASSERT_TRUE(in >> node && node.value() == line.value());
  for (const wchar_t* const half_a_pair : {L"\xD800x", L"\xD800"}) {
    std::wofstream refused;
    refused.imbue(locale);
    refused.open(file.path());
    if (refused << half_a_pair << std::flush) refused.close();
    EXPECT_FALSE(refused);
  }
}

}  // namespace
