// What a terminal adds to an answer: colours, and a pager for long ones.
//
// Colours stand in the texts as escape sequences, and only where standard output is a terminal that
// knows them and NO_COLOR isn't set.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kestrindb {

enum class Colour { heading, name, error, loss, note };

// The text in a colour, or as it is where there are none.
std::string Painted(std::string_view text, Colour colour);
// The same for standard error.
std::string PaintedForErrors(std::string_view text, Colour colour);

// What goes to standard output as it is; where that is a terminal, no control character does.
std::string Unaltered(const std::string& text);

// The columns that a text takes, its colours left out.
int ColumnsOf(std::string_view text);

// Lets `print` write to standard output, by way of the program that $PAGER names if that is a
// terminal with fewer lines.
void PrintByPages(const std::function<void()>& print);

}  // namespace kestrindb
