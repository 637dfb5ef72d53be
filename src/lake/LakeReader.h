// How a lake takes its lines from any source of bytes. A file is one; inside the library only.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>

class CLake;

struct LakeReader {
  // Puts bytes at the start of the block, which is not empty, and gives their number: 0 at the end,
  // nothing when the medium fails. A block need not be filled.
  using Source = std::function<std::optional<std::size_t>(std::span<char> block)>;

  // Replaces the lake's lines, with the results of `CLake::read`.
  static bool read(CLake& lake, const Source& source);
};
