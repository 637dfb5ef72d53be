// The text files of this folder, as the build has compiled them in.
#pragma once

#include <span>
#include <string_view>

struct EmbeddedText {
  std::string_view name;  // of the file, without ".txt"
  std::string_view text;  // the file, byte for byte
};

std::span<const EmbeddedText> EmbeddedTexts();
