// Files in, files out: if this breaks, a parameter file is misread, damaged, or crashes its host.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <locale>
#include <optional>
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

// The lines of a lake, texts alone, one after the other.
std::wstring Lines(const CLake& lake) {
  std::wstring text;
  for (const auto& line : lake)
    text += line.key() + L"|" + line.value() + L"|" + line.comment() + L"/";
  return text;
}

TEST(LakeFile, LinesAreTakenApart) {
  const struct {
    const wchar_t *line, *key, *value, *comment;
  } cases[] = {
      {L" <QType><FBaseName> : \"Gear: box\" ", L"<QType><FBaseName>", L"\"Gear: box\"", L""},
      {L"a: b: c", L"a", L"b: c", L""},
      {L"\"a:b\": c", L"\"a:b\"", L"c", L""},
      {L"5 \"a:b\"", L"", L"5 \"a:b\"", L""},
      {L"12:30 \"x\"", L"12", L"30 \"x\"", L""},
      {L"5 \"x\" ; note: z", L"", L"5 \"x\" ; note: z", L""},
      {L"\t} ; note ", L"", L"}", L"note"},
      {L"} x ; n", L"", L"} x", L"n"},
      {L"} \"a;b\" ; n", L"", L"} \"a;b\"", L"n"},
      {L"\v\f; a: b\r", L"", L"", L"a: b"},
      {L";", L"", L"", L""},
      {L"key: value ; note", L"key", L"value ; note", L""},
      {L"\"unclosed: x", L"", L"\"unclosed: x", L""},
      {L"}: x", L"}", L"x", L""},
      {L": x", L"", L"x", L""},
      {L"k:", L"k", L"", L""},
      {L"\t\t", L"", L"", L""},
      {L"a\rb", L"", L"a\rb", L""},
      {L"\u00A0x", L"", L"\u00A0x", L""},
      {L"<T>: { ; x", L"<T>", L"{ ; x", L""},
      {L" { ", L"", L"{", L""},
  };
  CLake::CNode node;  // one for all, so that nothing of a line may stay for the next
  for (const auto& c : cases) {
    std::wistringstream(c.line) >> node;
    EXPECT_EQ(node.key(), c.key) << c.line;
    EXPECT_EQ(node.value(), c.value) << c.line;
    EXPECT_EQ(node.comment(), c.comment) << c.line;
    EXPECT_EQ(node.is_section(), node.value() == L"{") << c.line;
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
      {"a", L"|a|/"},
      {"a\r\nb\n", L"|a|/|b|/"},
      {"a\rb\r", L"|a\rb|/"},
      {"a\n\n", L"|a|/||/"},
      {"\xE4\xFF\x80: \xC3\xA4", L"\u00E4\u00FF\x80|\u00C3\u00A4|/"},
      {"a\xEF\xBB\xBF", L"|a\u00EF\u00BB\u00BF|/"},
      {"a\0b\n\0"s, L"|a\0b|/|\0|/"s},
      {kMark, L""},
      {kMark + "\n", L"||/"},
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
      {"\xEF\xBB", L"|old|/", false},
      {"\xEF\xBBx\n", L"|old|/", false},
      {"\xEF\xBF\xBB", L"|old|/", false},
  };
  for (const auto& c : cases) {
    // All at once, byte by byte, and with a medium that fails behind the last byte.
    for (const auto& pass : {std::pair(9999U, false), {1U, false}, {1U, true}}) {
      const auto step = pass.first;
      const bool failing = pass.second;
      CLake lake = FromBytes("old");
      std::string_view rest = c.bytes;
      const bool result =
          LakeReader::read(lake, [&](std::span<char> block) -> std::optional<std::size_t> {
            if (rest.empty() && failing) return std::nullopt;
            const auto count = std::min<std::size_t>({step, rest.size(), block.size()});
            std::memcpy(block.data(), rest.data(), count);
            rest.remove_prefix(count);
            return count;
          });
      EXPECT_EQ(Lines(lake), c.lines) << c.bytes;
      const bool met_failure =
          failing && rest.empty() && c.bytes.find("\ne\n") == std::string::npos;
      EXPECT_EQ(result, c.result && !met_failure) << c.bytes;
      EXPECT_EQ(lake[L"none"].exists(), false);
    }
  }
}

TEST(LakeFile, WhatCannotBeOpenedOrReadLosesNothing) {
  const CString missing = Text::FromUtf8(testing::TempDir()) + L"there/is/none";
  CLake lake = FromBytes("a: 1\n");
  EXPECT_TRUE(lake.read(missing));
  EXPECT_EQ(lake.filename(), missing);
  EXPECT_TRUE(lake.read(L""));
  EXPECT_TRUE(lake.read(Text::FromUtf8(testing::TempDir())));
  EXPECT_FALSE(lake.write(L""));
  EXPECT_FALSE(lake.write(missing));
  const ScratchFile file("b: 2\n");
  EXPECT_TRUE(lake.read(file.name() + L'\0' + L"x"));
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
      {"\n", kMark + "\n"},
      {"   a: 1\r\n  <T>: {\n{\n1\n}\n\n; c\n} ;d\n}\nout\n",
       kMark + "a: 1\n<T>: {\n\t{\n\t\t1\n\t}\n\t\n\t\t; c\n}\t; d\n}\nout\n"},
      {kMark + "\xF0\x9F\x98\x80" + kMark, kMark + "\xF0\x9F\x98\x80" + kMark + "\n"},
      {kMark + "\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBDx\n\xED\xA0\xBD\nz",  // a pair, then lone ones
       kMark + "\xF0\x9F\x98\x80 \xEF\xBF\xBDx\n\xEF\xBF\xBD\nz\n"},
      {"\xE4", kMark + "\xC3\xA4\n"},
      {std::string(100000, 'k') + ": 1\n", kMark + std::string(100000, 'k') + ": 1\n"},
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

  std::string deep;
  for (int i = 0; i < 5000; ++i) deep += "{\n";
  EXPECT_EQ(ToBytes(FromBytes(deep)).size(), 3 + 5000U * 2 + 4999U * 5000 / 2);
}

// Characters of every length at every place of a block's edge, decoded by a plain second decoder.
TEST(LakeFile, MegabytesOfManyByteCharactersComeOutTheSame) {
  std::string bytes = kMark;
  std::vector<std::wstring> expected;
  const char32_t characters[] = {U'a', U'\u00E4', U'\u20AC', U'\U0001F600', U'"', U'\uFEFF'};
  for (unsigned i = 0, random = 1; bytes.size() < 4000000; ++i) {
    std::wstring& line = expected.emplace_back();
    for (unsigned length = i % 71; length > 0; --length) {
      random = random * 1664525 + 1013904223;
      const char32_t c = characters[(random >> 16) % 6];
      if (c < 0x10000) {
        line += static_cast<wchar_t>(c);
      } else {
        line += {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
      }
      bytes += c == U'a'        ? "a"
               : c == U'"'      ? "\""
               : c == U'\u00E4' ? "\xC3\xA4"
               : c == U'\u20AC' ? "\xE2\x82\xAC"
               : c == U'\uFEFF' ? "\xEF\xBB\xBF"
                                : "\xF0\x9F\x98\x80";
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

TEST(LakeFile, OneLineMayBeHuge) {
  std::string bytes = kMark;
  std::size_t blocks = 0;
  for (; bytes.size() < 50000000; ++blocks) bytes += "\xC3\xA4" + std::string(60, 'x');
  const CLake lake = FromBytes(bytes);
  ASSERT_EQ(std::distance(lake.begin(), lake.end()), 1);
  EXPECT_EQ(lake.begin()->value().size(), blocks * 61);
}

}  // namespace
