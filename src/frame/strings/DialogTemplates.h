// The library's own dialogs, as templates for the window layer.
//
// A dialog is data: a layout file under strings/ says what stands where, the language files say
// what is written on it. A dialog exists only in some languages; in the others it is shown in
// English, whole, rather than in two languages at once.
#pragma once

#include "interfaces/Export.h"

namespace kestrin {

class ResourceModule;
struct DialogTemplate;
struct Language;

namespace DialogId {
inline constexpr int key_specification = 3002;
}

// The dialog of that number; null if there is none. All are made on the first call and stay as they
// are to the end of the process. May be called from any thread.
const DialogTemplate* FindDialogTemplate(int id, const Language& language);

// This library's resources, for dialogs that it or a host shows: templates in the user's language.
KESTRIN_API const ResourceModule& LibraryResources();

}  // namespace kestrin
