// What happens when the library comes into a process and when it leaves: one line each in the
// developer trace, by the name that the suite gives the module on every platform. Where the
// platform would register the library's resources with an application framework nothing is left to
// do here, since the texts are compiled in.
//
// The hook is an object, so that the language runs it at load and unload, whether the library came
// with the program or was opened later. The trace is ready before any object of this library and
// outlives them all. A host that sets a trace sink takes it back before what the sink writes to is
// gone, for the last line comes when most of the process has been taken down.
#include "interfaces/sea/PrWin.h"

namespace {

class LibraryHook {
 public:
  LibraryHook() { PrWin::Trace(L"lKestrinDb.dll Initializing.\n"); }
  ~LibraryHook() { PrWin::Trace(L"lKestrinDb.dll Terminating.\n"); }

  LibraryHook(const LibraryHook&) = delete;
  LibraryHook& operator=(const LibraryHook&) = delete;
};

const LibraryHook hook;

}  // namespace
