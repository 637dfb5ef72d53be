// Seas: any bytes are loaded. A sea that could be loaded is changed and asked; one that couldn't
// stays as it was.

#include <string>

#include "Fuzz.h"
#include "interfaces/ResourceSea.h"

namespace fuzz {

void Sea(Bytes bytes) {
  if (bytes.size() > 16384) return;
  const QuietLog log;
  CResourceSea sea;
  CResourceList before(&sea, L"before");
  before.AddLineTail()->SetSeaLine(L"1");

  const MemoryFile file(bytes);
  const bool loaded = sea.Load(file.name());
  Require(loaded == (log.logged().lines == 0), "a refusal is logged");
  Require(loaded || sea.IsListEntry(L"before"), "a refusal leaves the sea as it was");

  CString line;
  CResourceList list(&sea, L"<TAutoModeParam>");
  for (list.GotoHead(); list.IsValid(); list.GotoNext()) list.GetCurrentLine()->GetLine(line);
  list.AddLineTail()->SetSeaLine(line.c_str());
  Require(list.IsValid(), "a list shows the line that was added");
  Require(before.GotoHead(), "a view outlives the content that it shows");
}

}  // namespace fuzz
