// The resource seas, the log and the small services beside them.
#include "use.h"

int main() {
  CResourceSea sea;
  const CResourceSea* const reader = &sea;
  assert(CSeaBase::ApplicationSea() != &sea && CSeaBase::MessagesSea() != nullptr);
  CResourceList list(&sea, L"<TOwn>");
  list.AddLineTail()->SetSeaLine(L"1 \"one\"");
  CResourceList rows(reader, L"<TOwn>");
  CString line;
  for (rows.GotoHead(); rows.IsValid(); rows.GotoNext()) rows.GetCurrentLine()->GetLine(line);
  list.RemoveAll();
  bool show = true;
  const lookup::result result = sea.LookupBool(2, L"ShowIdsInDialogs", show, 0);
  use(result);
  assert(line == L"1 \"one\"" && reader->IsListEntry(L"<TOwn>"));
  assert(reader->LookupGetBool(L"ShowIdsInDialogs", 0, false));
  CQtParamInstance::ShowIdsInDialogs(true);
  assert(CQtParamInstance::ShowIdsInDialogs());

  const auto category = static_cast<PrWin::Category>(8);
  const auto style = static_cast<PrWin::Style>(1);
  PrWin::Output(L"A finished line\n", category, style);
  PrWin::Output(category, L"%5d and %-8s.\n", 42, L"wide");
  PrWin::Output(category, style, L"%x, %ls, %.2f, %c and %%\n", 255U, L"text", 1.5, L'x');
  const std::wstring wide = Formatting::ansi2unicode("stoi", 1252);
  wchar_t cut[3];
  assert(wide == L"stoi" && !TableType::strcopy(cut, L"four", 3));
}
