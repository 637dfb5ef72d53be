// Which library this is, for logs, reports and bug reports of its hosts.
#pragma once

#include "interfaces/Export.h"

namespace kestrin {

// "1.0.0": major, minor and patch number of the library that runs, which need not be the one whose
// headers a host was compiled with. Within one major number a newer library serves programs that
// were compiled for an older one. Never null. Any thread.
KESTRIN_API const char* LibraryVersion();

}  // namespace kestrin
