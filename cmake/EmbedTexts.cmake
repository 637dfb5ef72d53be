# Writes a C++ file that holds text files whole, each under its name without the ending:
#   cmake -D OUTPUT=texts.cpp -D "INPUTS=a.txt;b.txt" -P EmbedTexts.cmake

set(rows "")
foreach(input IN LISTS INPUTS)
  cmake_path(GET input STEM name)
  file(READ "${input}" text)
  string(APPEND rows "    {\"${name}\", R\"kestrin(${text})kestrin\"},\n")
endforeach()

file(WRITE "${OUTPUT}" "// Made from the text files of the library by EmbedTexts.cmake.
#include \"frame/strings/EmbeddedTexts.h\"

namespace {
constexpr EmbeddedText texts[] = {
${rows}};
}  // namespace

std::span<const EmbeddedText> EmbeddedTexts() { return texts; }
")
