// The lake: lines, sections and look-ups, in memory and on disk.
#include "use.h"

int main() {
  CLake lake(L"gearbox.par"), copy(lake), empty;
  assert(copy.write(L"/dev/null") && copy.filename() == CString(L"/dev/null") && !lake.empty());
  empty = copy;
  empty.merge(lake);
  empty.clear();

  const CLake& reader = lake;
  const wchar_t* major = L"<DbDesign.CacheVersion>";
  std::wstring text = lake[major];
  text = reader[L"<QType><FBaseName>"];
  int number = lake[major];
  number += reader[major];
  const long wide = lake[major];
  const short narrow = static_cast<short>(lake[major]);
  const unsigned positive = static_cast<unsigned>(lake[major]);
  assert(number == 430 && wide == 215 && narrow == 215 && positive == 215U && text.size() > 2);
  assert(lake[major] == 215 && lake[major] != 0 && lake[major] > 214 && lake[major] + 1 == 216);
  CLake::CNodeProxy proxy = lake[L"none"];
  assert(!proxy.exists() && proxy == 0 && std::wstring(proxy).empty());
  proxy = lake[L"<TMode>"];
  lake[L"new"] = L"value";

  CLake::CNode& section = *proxy;
  const unsigned index = section.push_back(L"1 \"Warm up\"");
  assert(section.find_value(L"1 \"Warm up\"") == static_cast<int>(index));
  assert(section.is_section() && section.is_named() && section.key() == L"<TMode>");
  use(section.named_size(), section.unnamed_size(), section[L"none"], section.find(L"none"));
  use(section.begin_named(), section.end_named(), section.end_unnamed());
  CLake::CNode& line = **section.begin_unnamed();
  line.comment(line.comment() + L"row");
  line.value(line.value() + L" 0");
  line = std::wstring(L"2 \"Run up\"");
  section.clear_section();

  std::list<CLake::CNode> lines(3);
  std::wistringstream in(L"<TMode>: {\n}\n");
  in >> *std::next(lines.begin()) >> lines.back();
  CLake::CNode& root = lines.front();
  root.set_collection(lines);
  assert(root.link(std::next(lines.begin())) == lines.end() && root[L"<TMode>"].exists());
  const CLake::CNode made(lines, L"key", L"value", L"comment"), twin(made);
  std::wostringstream out;
  out << twin;
  assert(out.str() == L"key: value\t; comment\n" && !made[L"none"].exists());
  root.clear();
}
