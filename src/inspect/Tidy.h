// A parameter file tidied, so that two versions of it differ in what they say and not in its looks:
//
//   - one blank line between sections, and none twice; comments above a section go with it
//   - a tab for each level of nesting, 32 at most; blanks behind the tabs stay, since they line
//   numbers up
//   - no white space at the ends of lines, "key: value" and "}<tab>; comment"
//   - line ends are single line feeds, the last line has one too
//
// Lines keep their order, and what stands inside of a row or of a comment is never touched. Inside
// a section blank and comment lines are rows, so that they stay, each where it is. A tidied file
// loads as before, and tidied again it stays the same.
//
// What isn't read stays byte for byte: all that is behind a closing bracket too many, and from a
// line on that is not UTF-8 in a file with the mark. A file with a broken mark is given back as it
// is. The encoding stays: a file without the mark is Latin-1, and gets no mark.
#pragma once

#include <string>
#include <string_view>

#include "interfaces/Export.h"

namespace kestrin {

// Both are the bytes of a file, the mark included. Any thread.
KESTRIN_API std::string Tidied(std::string_view file);

}  // namespace kestrin
