// How a lake takes its text from any source of bytes, of which a file is one, how it goes through
// the lines of a text, and how it links lines. Inside the library only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lake/Lake.h"

// The parts of one line.
struct kestrin::LineParts {
  std::string_view key;
  std::string_view value;
  std::string_view comment;

  bool opens_section() const { return value == "{"; }
  bool closes_section() const { return key.empty() && value.starts_with('}'); }
};

namespace kestrin {

// Goes through the lines of a text: of a lake, or of a section without its first and last line.
class LineWalk {
 public:
  explicit LineWalk(std::string_view text) : text_(text) {}

  // False behind the last line.
  bool Next();
  // Leaves out the lines up to the next one that has a bracket.
  void SkipToBracket();

  const LineParts& Line() const { return line_; }
  // As that of a node.
  int Depth() const { return depth_; }
  // Of the text, and none of a section inside of it.
  bool IsRow() const { return depth_ == 0 && line_.key.empty() && !line_.closes_section(); }
  // The places in the text where the line begins and where the next one does.
  std::size_t Begin() const { return begin_; }
  std::size_t End() const { return std::min(end_, text_.size()); }

 private:
  std::size_t NextOf(char c, std::size_t& place);

  std::string_view text_;
  // The next of each, or one that lies behind: most lines have none, and a text is searched once.
  std::size_t colon_ = 0;
  std::size_t semicolon_ = 0;
  std::size_t opening_ = 0;
  std::size_t closing_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  LineParts line_;
  int depth_ = 0;
  int open_ = 0;  // sections; -1 behind a bracket that closes none of them
};

}  // namespace kestrin

// The text of a file.
struct CLake::FileText {
  // The first line of a key at the top, with the section that it or a later one of that key opens.
  struct Top {
    std::string_view value;
    bool is_section = false;
    std::string_view lines = {};  // between the brackets
  };

  void FindTops();

  std::string bytes;
  std::string_view lines;  // the bytes without the mark
  std::map<std::wstring, Top> tops;
};

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
