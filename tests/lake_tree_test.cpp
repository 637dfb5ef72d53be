// What stands in which section: if this breaks, tables load wrong rows or none.
#include "support.h"

namespace {

// A section as one text: named children with their values in key order, then the unnamed ones;
// children of sections in brackets.
std::wstring Shape(const CLake::CNode& node) {
  std::wstring text;
  const auto add = [&](const CLake::CNode& child) {
    if (child.is_named()) text += child.key() + L"=";
    text += child.value() == L"{" ? L"" : child.value();
    text += child.is_section() ? L"[" + Shape(child) + L"]," : L",";
  };
  for (auto it = node.begin_named(); it != node.end_named(); ++it) add(*it->second);
  for (auto it = node.begin_unnamed(); it != node.end_unnamed(); ++it) add(**it);
  return text;
}

TEST(LakeTree, LinesNestAndDuplicatesResolve) {
  const struct {
    std::string_view file;
    std::wstring_view shape;
  } cases[] = {{"", L""},
               {"\n", L","},
               {"b: 1\n5 x\na: 2\n; c\nb: 3\n", L"a=2,b=1,5 x,,"},
               {"s: {\n1\n}\ns: {\n2\n}\n3\n", L"s=[2,],3,"},
               {"s: {\n1\nt: {\n9\n}\n}\ns: {\n}\n", L"s=[],"},
               {"s: x\ns: {\n1\n}\n2\n", L"s=x[1,],2,"},
               {"s: {\n1\n}\ns: x\n2\n", L"s=[1,],2,"},
               {"{\n1\n{\n2\n}\n}\n3\n", L"[1,[2,],],3,"},
               {": {\n1\n: }\n2\n", L"[1,],2,"},
               {"k: } x\n1\n", L"k=} x,1,"},
               {"s: {\n1\n} x\n2\n", L"s=[1,],2,"},
               {"1\n}\n2\nk: 3\n", L"1,"},
               {"s: {\n1\nt: {\n2\n", L"s=[t=[2,],1,],"},
               {"s: {\n\n; c\n1\n}\n", L"s=[,,1,],"},
               {"s: {\n}: x\n}\n", L"s=[}=x,],"}};
  for (const auto& c : cases) {
    const CLake lake = FromBytes(c.file);
    EXPECT_EQ(Shape(lake.root()), c.shape) << c.file;
    EXPECT_EQ(lake.empty(), c.file.empty());
    EXPECT_EQ(Shape(CLake(lake).root()), c.shape) << c.file;
  }
}

TEST(LakeTree, LookupsHitAndMiss) {
  const CLake lake = FromBytes(
      "n: \t-12abc\nbig: 99999999999\nsmall: -99999999999\ntext: x1\nv\ns: {\nk: v\nv\n}\n");
  const std::tuple<const wchar_t*, const wchar_t*, int> cases[] = {
      {L"n", L"-12abc", -12}, {L"big", L"99999999999", 2147483647},
      {L"text", L"x1", 0},    {L"small", L"-99999999999", -2147483647 - 1},
      {L"none", L"", 0},      {L"", L"", 0},
      {L"s", L"{", 0}};
  for (const auto& [key, text, number] : cases) {
    EXPECT_EQ(lake[key].exists(), *text != L'\0') << key;
    EXPECT_EQ(std::wstring(lake[key]), text) << key;
    EXPECT_EQ(int(lake[key]), number) << key;
  }
  const CLake::CNode& section = *lake[L"s"];
  EXPECT_FALSE(section[L"n"].exists() || (*lake[L"n"])[L"k"].exists());
  EXPECT_EQ(std::wstring(section[L"k"]), L"v");
  EXPECT_EQ(section.find(L"none")->value(), L"}");
  EXPECT_EQ(section.find_value(L"v"), 0);
  EXPECT_EQ(section.find_value(L"none"), -1);
  EXPECT_EQ(lake.root().find_value(L"-12abc"), -1) << "a named child";
  EXPECT_EQ(lake[L"n"]->find_value(L"v"), -1) << "no section";
}

TEST(LakeTree, AProxyReadsAsNumberAndAsText) {
  CLake lake = FromBytes("n: 214 x\nm: 7\n");
  EXPECT_TRUE(lake[L"n"] == 214 && 0 == lake[L"none"]);
  EXPECT_EQ(lake[L"n"] * lake[L"m"] + 1, 1499);
  std::wstring text = lake[L"n"];
  text = lake[L"m"];
  EXPECT_EQ(text, L"7") << "not the character of that number";
  auto proxy = lake[L"n"];
  proxy = lake[L"m"];
  EXPECT_EQ(proxy, 7);
  EXPECT_EQ(lake[L"n"], 214) << "the variable changed the lake";
  lake[L"copy"] = lake[L"n"];
  EXPECT_EQ(std::wstring(lake[L"copy"]), L"214 x");
}

TEST(LakeTree, MergeReadsAsOneFileBehindTheOther) {
  const std::pair<std::string, std::string> cases[] = {
      {"a: 1\ns: {\n1\n}\n", "a: 2\nb: 3\ns: {\n2\n}\n"},
      {"s: {\n1\n", "2\n}\n3\n"},
      {"1\n}\n2\n", "3\n"},
      {"s: x\n", "s: {\n1\n}\n"},
      {"", "1\n"},
      {"1\n", ""}};
  for (const auto& [first, second] : cases) {
    CLake lake = FromBytes(first);
    {
      CLake other = FromBytes(second);
      lake.merge(other);
      EXPECT_EQ(ToBytes(other), ToBytes(FromBytes(second)));
      other.root().clear_section();  // and nothing of it is used any more
    }
    EXPECT_EQ(Shape(lake.root()), Shape(FromBytes(first + second).root()))
        << first << "+" << second;
  }
  CLake twice = FromBytes("s: {\n1\n}\n2\n");
  twice.merge(twice);
  CLake assigned = FromBytes("x: 1\n");
  assigned = twice;
  const CLake::CNode row = *std::prev(twice.end());
  twice.clear();
  EXPECT_TRUE(twice.empty());
  EXPECT_EQ(row.value(), L"2");
  assigned = *&assigned;
  EXPECT_EQ(Shape(assigned.root()), L"s=[1,],2,2,");
}

TEST(LakeTree, WhatIsMadeInMemoryIsReadBackTheSame) {
  CLake lake = FromBytes("old: {\n1\n}\nplain: 1\nrow\n");
  EXPECT_EQ(lake[L"old"].push_back(L"2"), 1U);
  EXPECT_EQ(lake.root_line(L"old").rows, 2U);
  lake[L"new"] = L"5";
  lake[L"plain"] = L"6";
  auto made = lake[L"made"];
  made = L"later a section";
  lake[L"sibling"] = L"7";
  EXPECT_EQ(made.push_back(L"a"), 0U);  // behind it stands a sibling already
  (*made)[L"k"] = L"v";
  (*made)[L"inner"].make_section();
  CLake::CNode& row = **lake.root().begin_unnamed();
  row.comment(L"would spoil the bracket");
  EXPECT_EQ(row.push_back(L"below a row"), 0U);
  EXPECT_EQ(lake.root().push_back(L"last"), 1U);
  EXPECT_EQ(ToBytes(lake),
            "\xEF\xBB\xBFold: {\n\t1\n\t2\n}\nplain: 6\n{\n\tbelow a row\n}\nnew: 5\nmade: {\n\ta\n"
            "\tk: v\n\tinner: {\n\t}\t; inner\n}\t; made\nsibling: 7\nlast\n");
  EXPECT_EQ(Shape(FromBytes(ToBytes(lake)).root()), Shape(lake.root()));

  lake[L"old"]->clear_section();
  EXPECT_EQ(ToBytes(lake).substr(3, 18), "old: {\n}\nplain: 6\n");
  made->clear_section();
  EXPECT_EQ(made.push_back(L"c"), 0U);
  EXPECT_FALSE((*lake[L"made"])[L"k"].exists());
}

TEST(LakeTree, FaultsOfTheCallerChangeNothing) {
  CLake lake = FromBytes("s: {\n1\n}\np: 1\n");
  const CLake& constant = lake;
  const std::string before = ToBytes(lake);
  const std::function<void()> faults[] = {
      [&] { lake[L"s"] = L"x"; },
      [&] { lake[L"p"] = L"{"; },
      [&] { lake[L"q"] = L"{"; },
      [&] { lake[L""] = L"x"; },
      [&] { (*lake[L"p"])[L"k"] = L"x"; },
      [&] { CLake::CNodeProxy(constant[L"q"]).push_back(L"x"); },
      [&] { CLake::CNodeProxy(constant[L"p"]).push_back(L"x"); },
      [&] { CLake::CNode(*lake[L"p"]).push_back(L"x"); },  // a copy is in no list
      [&] { lake[L"s"]->comment(L"x"); }};
  for (const auto& fault : faults) EXPECT_DEBUG_DEATH(fault(), "");
  EXPECT_EQ(ToBytes(lake), before);
}

TEST(LakeTree, ManyLevelsNeedNoStackAndManyRowsNoTime) {
  constexpr int count = 300000;
  std::string file;
  for (int i = 0; i < count; ++i) file += "{\n";
  CLake copy(FromBytes(file));
  copy.merge(FromBytes("{\n"));
  int depth = 0;
  for (auto* at = &copy.root(); at->unnamed_size() == 1; ++depth) at = &**at->begin_unnamed();
  EXPECT_EQ(depth, count + 1);
  EXPECT_TRUE(copy.write(L"/dev/full"));

  CLake lake;
  for (int i = 0; i < count; ++i) lake[L"t"].push_back(L"row");
  EXPECT_EQ(lake[L"t"]->unnamed_size(), static_cast<std::size_t>(count));
}

}  // namespace
