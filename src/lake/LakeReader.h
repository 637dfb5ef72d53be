// How a lake takes its lines from any source of bytes, of which a file is one, and how it links
// them. Inside the library only.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "lake/Lake.h"

// Makes the tree under a section of lines that come one by one, in file order. A line is linked as
// soon as it is made: a second walk over a large file's nodes would wait for memory at each.
class CLake::CNode::Linker {
 public:
  explicit Linker(CNode& section);

  // False if the line closes the section: it was the last one.
  bool add(NodeList::iterator line);

 private:
  // The sections that are open at a line. They stand on a stack of their own, since a file may nest
  // deeper than a thread's stack. A line belongs to the innermost one.
  std::vector<CNode*> open_;
};

struct kestrin::LakeReader {
  // Puts bytes at the start of the block, which is not empty, and gives their number: 0 at the end,
  // nothing when the medium fails. A block need not be filled.
  using Source = std::function<std::optional<std::size_t>(std::span<char> block)>;

  // Replaces the lake's lines, with the results of `CLake::read`. The size is that of all bytes,
  // where it is known.
  static bool read(CLake& lake, const Source& source, std::size_t size = 0);
  static bool read(CLake& lake, std::string_view bytes, const CString& filename);

  // A line by itself.
  static CLake::CNode line(std::wstring_view text) {
    CLake::CNode node;
    node.set_own_line(text);
    return node;
  }
};
