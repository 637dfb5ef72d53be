// The library's own dialogs, as templates for the window layer.
//
// What stands where is laid down here, what is written on it stands in the language files. A dialog
// exists only in some languages; in the others it is shown in English, whole, rather than in two
// languages at once.
#pragma once

#include "interfaces/Export.h"

namespace kestrin {

class ResourceModule;

namespace DialogId {
inline constexpr int key_specification = 3002;
}

// This library's resources, for dialogs that it or a host shows: templates in the user's language.
// They stay as they are to the end of the process, and any thread may ask for them.
KESTRIN_API const ResourceModule& LibraryResources();

}  // namespace kestrin
