#include "frame/Version.h"

// The number stands in the project's CMakeLists.txt and reaches this file alone.
const char* LibraryVersion() { return KESTRIN_VERSION; }
