// Files in, files out: if this breaks, a parameter file is misread, damaged, or crashes its host.
#include <gtest/gtest.h>

#include <algorithm>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "lake/Lake.h"
#include "lake/LakeReader.h"
#include "lake/Utf8ToUcs2.h"
#include "lake_bytes.h"

namespace {

const std::string kMark = "\xEF\xBB\xBF";
using namespace std::string_literals;
using kestrin::Refusal;

std::wstring Texts(const CLake::CNode& line) {
  return line.key() + L"|" + line.value() + L"|" + line.comment();
}

// The lines of a lake, one after the other.
std::wstring Lines(const CLake& lake) {
  std::wstring text;
  for (const auto& line : lake) text += Texts(line) + L"/";
  return text;
}

TEST(LakeFile, LinesAreTakenApart) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L" <QType><FBaseName> : \"Gear: box\" ", L"<QType><FBaseName>|\"Gear: box\"|"},
      {L"a: b: c", L"a|b: c|"},
      {L"\"a:b\": c", L"\"a:b\"|c|"},
      {L"5 \"a:b\"", L"|5 \"a:b\"|"},
      {L"5 \"x\" ; note: z", L"|5 \"x\" ; note: z|"},
      {L"\t} ; note ", L"|}|note"},
      {L"} x ; n", L"|} x|n"},
      {L"} \"a;b\" ; n", L"|} \"a;b\"|n"},
      {L"\v\f; a: b\r", L"||a: b"},
      {L"key: value ; note", L"key|value ; note|"},
      {L"\"unclosed: x", L"|\"unclosed: x|"},
      {L": x", L"|x|"},
      {L"k:", L"k||"},
      {L"a\rb", L"|a\rb|"},
      {L"\u00A0x", L"|\u00A0x|"},
      {L"\u3000k\u2003:\u1680 v\u2028", L"k|v|"},
      {L"<T>: { ; x", L"<T>|{ ; x|"},
      {L" { ", L"|{|"},
  };
  CLake::CNode node;  // one for all, so that nothing of a line may stay for the next
  for (const auto& [line, texts] : cases) {
    std::wistringstream(line) >> node;
    EXPECT_EQ(Texts(node), texts) << line;
    EXPECT_EQ(node.is_section(), node.value() == L"{") << line;
  }
  std::wostringstream out;
  out << CLake::CNode(*std::make_unique<CLake::NodeList>(), L"k", L"v", L"c");
  EXPECT_EQ(out.str(), L"k: v\t; c\n");
}

TEST(LakeFile, BytesBecomeLines) {
  const struct {
    std::string bytes;
    std::wstring lines;
    bool result = true;
  } cases[] = {
      {"", L""},
      {"a\r\nb\n", L"|a|/|b|/"},
      {"a\rb\r", L"|a\rb|/"},
      {"a\n\n", L"|a|/||/"},
      {"\xE4\xFF\x80: \xC3\xA4", L"\u00E4\u00FF\x80|\u00C3\u00A4|/"},
      {"a\xEF\xBB\xBF", L"|a\u00EF\u00BB\u00BF|/"},
      {"a\0b\n\0"s, L"|a\0b|/|\0|/"s},
      {kMark, L""},
      {kMark + kMark + "\xC3\xA4: \xE2\x82\xAC\xF0\x9F\x98\x80\n",
       L"\xFEFF\u00E4|\u20AC\xD83D\xDE00|/"},
      {kMark + "\xC1\x81\xF8\x80\x80\x80\x81\xFC\x80\x80\x80\x80\x82", L"|A\x01\x02|/"},
      {kMark + "\xED\xA0\x80", L"|\xD800|/"},
      {kMark + "a\nbc\xC3(d\ne\n", L"|a|/|bc|/"},  // no continuation
      {kMark + "a\nbc\x80"
               "d\ne\n",
       L"|a|/|bc|/"},                                 // no lead
      {kMark + "a\n\xF4\x90\x80\x80\ne\n", L"|a|/"},  // beyond U+10FFFF, nothing of the line
      {kMark + "a\n\xFF\x80\x80\x80\x80\x80\ne\n", L"|a|/"},
      {kMark + "a\nb\xF0\x9F\x98", L"|a|/|b|/"},  // cut by the end
      {"\xEF", L"|old|/", false},
      {"\xEF\xBBx\n", L"|old|/", false},
      {"\xEF\xBF\xBB", L"|old|/", false},
  };
  for (const auto& c : cases) {
    for (Medium medium :
         {Medium{9999, Medium::End::of_file}, Medium{1, Medium::End::of_file},
          Medium{1, Medium::End::reports_failure}, Medium{1, Medium::End::throws}}) {
      SCOPED_TRACE(c.bytes);
      medium.rest = c.bytes;
      CLake lake = FromBytes("old");
      const bool stops_before = c.bytes.find("\ne\n") != std::string::npos;  // at what is no text
      try {
        const bool result = LakeReader::read(lake, std::ref(medium));
        EXPECT_EQ(Lines(lake), c.lines);
        EXPECT_EQ(result, c.result && (medium.end == Medium::End::of_file || stops_before));
        const bool is_cut = c.bytes.ends_with("\x9F\x98") && medium.end == Medium::End::of_file;
        EXPECT_EQ(lake.last_refusal().reason, !c.result                ? Refusal::broken_mark
                                              : stops_before || is_cut ? Refusal::broken_text
                                              : !result                ? Refusal::broken_medium
                                                                       : Refusal::none);
        if (lake.last_refusal().reason == Refusal::broken_text) {
          const std::string before = c.bytes.substr(0, c.bytes.find("\ne\n"));
          const auto line = 1 + std::count(before.begin(), before.end(), '\n');
          EXPECT_EQ(lake.last_refusal().line, static_cast<int>(line));
        }
      } catch (const std::runtime_error&) {
        EXPECT_TRUE(medium.end == Medium::End::throws && !stops_before);
        EXPECT_EQ(Lines(lake), L"|old|/");
      }
      EXPECT_FALSE(lake[L"none"].exists());
    }
  }
}

TEST(LakeFile, WhatCannotBeOpenedOrReadLosesNothing) {
  const CString missing = Text::FromUtf8(testing::TempDir()) + L"there/is/none";
  CLake lake = FromBytes("a: 1\n");
  EXPECT_TRUE(lake.read(missing));
  EXPECT_EQ(lake.filename(), missing);
  EXPECT_EQ(lake.last_refusal().sentence, L"The file '" + missing + L"' doesn't exist.");
  EXPECT_TRUE(lake.read(L""));
  EXPECT_TRUE(lake.read(Text::FromUtf8(testing::TempDir())));
  EXPECT_EQ(lake.last_refusal().reason, Refusal::folder);
  EXPECT_FALSE(lake.write(L""));
  EXPECT_FALSE(lake.write(missing));
  const ScratchFile file("b: 2\n");
  EXPECT_TRUE(lake.read(file.name() + L'\0' + L"x"));
  EXPECT_EQ(lake.last_refusal().reason, Refusal::unopened);
  EXPECT_FALSE(lake.write(file.name() + L'\0' + L"x"));
  EXPECT_EQ(int(lake[L"a"]), 1);
  EXPECT_EQ(file.bytes(), "b: 2\n");
  EXPECT_TRUE(lake.write(L"/dev/full"));
  EXPECT_EQ(int(CLake(file.name())[L"b"]), 2);
  EXPECT_FALSE(CLake().read(L"/proc/self/mem")) << "a medium that fails at once";
  EXPECT_EQ(&CParameterLake::Lake(), &CParameterLake::Lake());
  EXPECT_TRUE(CParameterLake::Lake().empty());
}

TEST(LakeFile, WrittenAndReadBackIsTheSame) {
  const struct {
    std::string read, written;
  } cases[] = {
      {"", ""},
      {"   a: 1\r\n  <T>: {\n{\n1\n}\n\n; c\n} ;d\n}\nout\n",
       kMark + "a: 1\n<T>: {\n\t{\n\t\t1\n\t}\n\t\n\t\t; c\n}\t; d\n}\nout\n"},
      {kMark + "\xF0\x9F\x98\x80" + kMark, kMark + "\xF0\x9F\x98\x80" + kMark + "\n"},
      {kMark + "\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBDx\n\xED\xA0\xBD\nz",  // a pair, then lone ones
       kMark + "\xF0\x9F\x98\x80 \xEF\xBF\xBDx\n\xEF\xBF\xBD\nz\n"},
      {"\xE4", kMark + "\xC3\xA4\n"},
      {std::string(3000000, 'k') + ": 1\n", kMark + std::string(3000000, 'k') + ": 1\n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToBytes(FromBytes(c.read)), c.written);
    EXPECT_EQ(ToBytes(FromBytes(c.written)), c.written);
  }
  CLake beyond;
  beyond.root().push_back(std::wstring(L"a") + static_cast<wchar_t>(0x10000) +
                          L"\xDC00"
                          L"b");
  EXPECT_EQ(ToBytes(beyond), kMark +
                                 "a\xEF\xBF\xBD\xED\xB0\x80"
                                 "b\n");
}

// Characters of every length at every place of a block's edge.
TEST(LakeFile, MegabytesOfManyByteCharactersComeOutTheSame) {
  const std::pair<const wchar_t*, const char*> characters[] = {
      {L"a", "a"},
      {L"\"", "\""},
      {L"\u00E4", "\xC3\xA4"},
      {L"\u20AC", "\xE2\x82\xAC"},
      {L"\xFEFF", "\xEF\xBB\xBF"},
      {L"\xD83D\xDE00", "\xF0\x9F\x98\x80"}};
  std::string bytes = kMark;
  std::vector<std::wstring> expected;
  std::mt19937 random(1);
  while (bytes.size() < 2000000) {
    std::wstring& line = expected.emplace_back();
    for (std::size_t length = expected.size() % 71; length > 0; --length) {
      const auto& [wide, utf8] = characters[random() % std::size(characters)];
      line += wide;
      bytes += utf8;
    }
    bytes += '\n';
  }
  const CLake lake = FromBytes(bytes);
  EXPECT_TRUE(std::equal(lake.begin(), lake.end(), expected.begin(), expected.end(),
                         [](const auto& node, const auto& line) { return node.value() == line; }));
  EXPECT_EQ(ToBytes(lake), bytes);

  // The facet serves the platform's own streams as well, whose buffers have other edges.
  const std::locale locale(std::locale::classic(), new lake_encoding::utf8toucs2);
  const ScratchFile file;
  {
    std::wofstream out;
    out.imbue(locale);
    out.open(file.path(), std::ios::binary);
    for (const auto& node : lake) out << node;
  }
  EXPECT_TRUE(file.bytes() == bytes);
  std::wifstream in;
  in.imbue(locale);
  in.open(file.path(), std::ios::binary);
  EXPECT_EQ(in.get(), 0xFEFF);
  CLake::CNode node;
  for (const auto& line : expected) {
    ASSERT_TRUE(in >> node);
    ASSERT_EQ(node.value(), line);
  }
  std::wofstream refused;
  refused.imbue(locale);
  refused.open(file.path());
  EXPECT_FALSE(refused << L'\xD800' << L'x' << std::flush);
}

}  // namespace
