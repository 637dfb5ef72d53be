#include "frame/Version.h"

// The number stands in the project's CMakeLists.txt and reaches this file alone.
namespace kestrin {
const char* LibraryVersion() { return KESTRIN_VERSION; }
}  // namespace kestrin
