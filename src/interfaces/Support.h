// Memory and text services, under the names of the suite's support library. All of them may be
// called from any thread.
#pragma once

#include <cstddef>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

// A block of size bytes, aligned for any object; 0 bytes give a block too. Never null: throws
// std::bad_alloc if there is no memory.
KESTRIN_API void* tl_malloc(std::size_t size);

// Gives back a block of tl_malloc; null is nothing to give back.
KESTRIN_API void tl_free(void* block) noexcept;

namespace Formatting {

// An 8-bit text as wide text. Code page 1252 is Western European Windows (its five bytes without a
// character give the control characters of the same number), 65001 is UTF-8. Every other code page
// is taken as 28591, Latin 1, which never fails and keeps ASCII what it is. Null gives an empty
// text.
KESTRIN_API std::wstring ansi2unicode(const char* text, unsigned codepage);

}  // namespace Formatting
