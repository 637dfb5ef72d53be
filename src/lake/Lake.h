// The lake: a parameter text file in memory.
//
// Every line of the file is one node, in file order, in one list. Over that list lies a tree of
// sections: a section's indexes hold list iterators of its direct children, so no line stands in
// memory twice and the file can be written back line for line, comments and blank lines included.
//
//     list      root  <QType>: "G"  <TMode>: {   1 "Up"   2 "Down"   }
//     root       named ----^------------^           |        |       |
//     <TMode>    unnamed ---------------------------^--------^       |
//                end ------------------------------------------------^
//
// There are no paths: `<QType><FBaseName>` is one flat key of one line of the root.
//
// A file has hundreds of thousands of lines, and nearly all of them are rows: a value and nothing
// else, which a table reads once. So a lake that was read is the text of its file, whole, as UTF-8:
// tables read their rows from it (`root_line`), and it is copied and written as it is. Nodes are
// made when somebody asks for one, all at once, and are the lake from then on. The node of a row
// knows its part of the text. Wide texts, and the indexes of a section, are kept aside: for lines
// that have a key, a comment or children, or a value that somebody has set or asked for.
//
// Threads: a lake has no lock. Constant operations but `write`, which stores a name that it is
// given, may run on any number of threads as long as no other operation runs beside them.
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"
#include "lake/Refusal.h"

namespace kestrin {

struct LakeReader;
struct LineParts;

// What is made when somebody asks for it. Of threads that come at the same time each makes one, and
// the first stays.
template <class T>
class OnDemand {
 public:
  OnDemand() = default;
  OnDemand(const OnDemand&) = delete;
  OnDemand& operator=(const OnDemand&) = delete;
  ~OnDemand() { Set(nullptr); }

  // Null until it has been made.
  T* Get() const { return made_.load(std::memory_order_acquire); }

  // `make` gives a std::unique_ptr<T>.
  T& GetOr(auto make) const {
    if (T* const there = Get()) return *there;
    std::unique_ptr<T> made = make();
    T* first = nullptr;
    return made_.compare_exchange_strong(first, made.get()) ? *made.release() : *first;
  }

  // Beside no other operation.
  void Set(std::unique_ptr<T> made) { delete made_.exchange(made.release()); }

 private:
  mutable std::atomic<T*> made_ = nullptr;  // owned
};

// A line of a lake's root, as `CLake::root_line` gives it.
struct RootLine {
  bool exists = false;
  bool is_section = false;
  std::wstring value;
  std::size_t rows = 0;  // the section's unnamed lines

  // Gives the values of these lines one after the other, in the form of CNode::bytes, each good
  // until the next is asked for, and then nothing. Good as long as the lake isn't changed.
  std::function<std::optional<std::string_view>()> next_row = [] { return std::nullopt; };
};

}  // namespace kestrin

class KESTRIN_API CLake {
 public:
  class CNode;
  class CNodeProxy;
  using NodeList = std::list<CNode>;  // its iterators stay valid while other nodes come and go
  using const_iterator = NodeList::const_iterator;

  // An empty lake, or the lines of a file as `read` gets them.
  explicit CLake(CString filename = {});
  // The same lines under a root of its own; the file name is empty.
  CLake(const CLake& other);
  // The same lines; the file name stays. If memory runs out, nothing has changed.
  CLake& operator=(const CLake& other);
  ~CLake();

  // Replaces the lines by those of a file; an empty argument stands for the stored name, another
  // one is stored. A file that can't be opened (missing, a folder, no right to read) leaves the
  // lines as they are and gives true. False is given for a file that begins with a broken UTF-8
  // mark, which leaves the lines too, and when the medium fails: then the lines read until there
  // are the lake. A file with the mark is read as UTF-8, one without as Latin-1; bytes that are not
  // UTF-8 in a file with the mark end the text at that place.
  bool read(const CString& filename);

  // Why the last `read` of this lake got no lines or not all; no reason before any.
  const kestrin::Refusal& last_refusal() const { return last_refusal_; }

  // Writes all lines in their order, as UTF-8 behind the mark and ended by LF alone; those outside
  // of every section too, at the margin. Without lines, a file of zero bytes. The file name
  // as in `read`. False if the file can't be opened; a failure while writing ends the writing and
  // is not reported. A high surrogate that no low one follows and an element above 0xFFFF become
  // U+FFFD.
  bool write(const CString& filename) const;

  const CString& filename() const { return filename_; }

  // True when there are no lines. A single blank line is a line.
  bool empty() const;
  void clear();

  // Appends copies of the other lake's lines, as if its file had been read behind this one: of a
  // plain key that stands in both this lake's value is kept, a section that stands in both shows
  // the other lake's children. A lake may be merged with itself. If memory runs out, nothing has
  // changed, or the lake has no lines.
  void merge(const CLake& other);

  // The lines in file order, those outside every section too. The root is none of them.
  const_iterator begin() const;
  const_iterator end() const;

  // The section that holds the lines of the top level.
  CNode& root();
  const CNode& root() const;

  // Looks a key up in the root.
  CNodeProxy operator[](const std::wstring& key);
  const CNodeProxy operator[](const std::wstring& key) const;

  // What stands in the line that operator[] finds, for those who only read it: makes no nodes. All
  // that gives an iterator, a node or a proxy does, also of a constant lake. They take some 70
  // bytes a line, for which memory may run out.
  kestrin::RootLine root_line(const std::wstring& key) const;

 private:
  friend struct kestrin::LakeReader;

  struct FileText;

  // The root and the lines behind it, and the texts that they are parts of, which copies of the
  // lines share. Nodes know their list by its place.
  struct Lines {
    NodeList nodes;
    std::set<std::shared_ptr<const FileText>> texts;
  };

  Lines& lines() const;
  std::unique_ptr<Lines> make_lines() const;  // of which `lines` keeps one
  // Links all lines anew, with more lines behind them. If memory runs out, there are no lines.
  void link_root(Lines&& more);

  mutable CString filename_;
  kestrin::Refusal last_refusal_;
  std::shared_ptr<const FileText> text_;  // what the lake is as long as it has no nodes
  kestrin::OnDemand<Lines> lines_;
};

namespace kestrin {

// CLake::read of bytes that somebody has read already, from a pipe for instance. The file name is
// stored.
KESTRIN_API bool ReadLake(CLake& lake, std::string_view bytes, const CString& filename);

}  // namespace kestrin

// A line, or the root. A node belongs to the list of one lake; a copy of a node alone still points
// into that list, so lines are copied from lake to lake by the lake and never node by node.
class KESTRIN_API CLake::CNode {
 public:
  using NamedChildren = std::map<std::wstring, NodeList::iterator>;
  using UnnamedChildren = std::vector<NodeList::iterator>;

  CNode() = default;
  CNode(NodeList& list, std::wstring_view key, std::wstring_view value, std::wstring_view comment);
  CNode(const CNode& other);
  CNode& operator=(const CNode& other);
  ~CNode();

  // The texts are those of one line of a file: trimmed, without a line feed. References are good
  // until the text is set, and as long as the line stands in its lake. A value that is asked for
  // stays in memory as wide text beside the file's; `bytes` gives it without.
  const std::wstring& key() const { return extra().key; }
  const std::wstring& value() const;
  const std::wstring& comment() const { return extra().comment; }

  // The value in the form of Text::ToBytes: a part of the file's text, good as long as a reference
  // to the value would be, or made in `room` where a host has set the value.
  std::string_view bytes(std::string& room) const;

  // Set value or comment. A section's own line is fixed, and "{" can't be assigned (`push_back`
  // makes a section): both are faults of the caller, asserted in a debug build and without effect
  // otherwise. A value "{" that is set is a text until lines are linked anew: by a read, copy or
  // merge. A comment is read back as a comment from lines without key and value, and behind a "}".
  void value(const std::wstring& text);
  void comment(const std::wstring& text);
  CNode& operator=(const std::wstring& text);

  bool is_named() const { return own_extra() != nullptr && !own_extra()->key.empty(); }
  bool is_section() const { return is_section_; }

  // The direct children: by key, the first line of a key standing for all; and those without a key
  // in line order, blank and comment lines included, the closing line excluded. Adding and
  // clearing children invalidates iterators over the unnamed ones.
  unsigned int named_size() const { return static_cast<unsigned int>(extra().named.size()); }
  unsigned int unnamed_size() const { return static_cast<unsigned int>(extra().unnamed.size()); }
  NamedChildren::const_iterator begin_named() const { return extra().named.begin(); }
  NamedChildren::const_iterator end_named() const { return extra().named.end(); }
  UnnamedChildren::const_iterator begin_unnamed() const { return extra().unnamed.begin(); }
  UnnamedChildren::const_iterator end_unnamed() const { return extra().unnamed.end(); }

  // The named child of that key. On a miss the place behind the section's lines (its closing line,
  // or the end of the list); for a line that is no section a default-made iterator.
  NodeList::iterator find(const std::wstring& key) const;

  // Index of the first unnamed child with that value; -1 if there is none or this is no section.
  int find_value(const std::wstring& value) const;

  // Looks a key up in this section. The node must belong to a list.
  CNodeProxy operator[](const std::wstring& key);
  const CNodeProxy operator[](const std::wstring& key) const;

  // Adds an unnamed line at the end of this section and returns its index among the unnamed
  // children. A plain line becomes a section first: its value becomes "{", its comment goes, and
  // a closing line directly behind it bears its key as comment. The text is not looked at: one
  // that reads as a key or a bracket is written as it stands and read back as what it then is.
  unsigned int push_back(const std::wstring& text);

  // Takes the direct children out of the list. The section's own line, its closing line, and the
  // lines inside of child sections stay. What a file had as text stays in memory with the lake.
  void clear_section();

  // What the lake is built with. `link` makes this node the section of the lines from `first` on
  // and returns the place behind its closing line; nesting costs no stack.
  NodeList::iterator link(NodeList::iterator first);
  void set_collection(NodeList& list) { collection_ = &list; }
  // Everything goes but the comment, which stays with the line that the node becomes next, and the
  // place of the closing line.
  void clear();

  // A stream holds one node a line.
  friend KESTRIN_API std::wistream& operator>>(std::wistream& in, CNode& node);
  friend KESTRIN_API std::wostream& operator<<(std::wostream& out, const CNode& node);

 private:
  friend class CLake;
  friend struct kestrin::LakeReader;
  class Linker;

  // What only some lines have.
  struct Extra {
    std::wstring key;
    std::wstring comment;  // without its semicolon
    NamedChildren named;
    UnnamedChildren unnamed;
    NodeList::iterator end;  // of a section: the closing line, or the end of the list
  };
  // What such lines have, and those whose value somebody has asked for.
  struct Wide {
    std::wstring value;
    std::unique_ptr<Extra> extra;
  };

  Wide* wide() const { return wide_.Get(); }
  Wide& own_wide() const;
  Extra* own_extra() const { return wide() != nullptr ? wide()->extra.get() : nullptr; }
  const Extra& extra() const {
    const Extra* const own = own_extra();
    return own != nullptr ? *own : no_extra();
  }
  static const Extra& no_extra();
  Extra& make_extra();

  bool has_own_value() const { return bytes_.data() == nullptr && wide() != nullptr; }

  bool opens_section() const { return has_own_value() ? value() == L"{" : bytes_ == "{"; }
  bool is_closing() const {
    return (has_own_value() ? value().starts_with(L'}') : bytes_.starts_with('}')) && !is_named();
  }

  CNodeProxy look_up(const std::wstring& key, CNode* owner) const;
  void copy_texts(const CNode& other);
  void unlink();
  void begin_section();
  NodeList::iterator insert(const std::wstring& key);
  void make_section(NodeList::iterator self);
  void make_end();
  NodeList::iterator position() const;

  // Of a new node; the value stays a part of the line.
  void set_line(const kestrin::LineParts& line);
  // The node keeps no part of the line. If memory runs out, it is as it was.
  void set_own_line(std::wstring_view line);
  void set_texts(std::wstring key, std::wstring value, std::wstring comment);
  void append_line(std::string& text) const;

  NodeList* collection_ = nullptr;  // the list that holds this node; none outside every section
  // The value: "{" for a section; a closing line's begins with "}". Without a place in memory if it
  // stands in the wide text alone.
  std::string_view bytes_;
  kestrin::OnDemand<Wide> wide_;
  int depth_ = -1;  // 0 for a line of the root; a closing line has that of its section
  bool is_section_ = false;
};

KESTRIN_API std::wistream& operator>>(std::wistream& in, CLake::CNode& node);
KESTRIN_API std::wostream& operator<<(std::wostream& out, const CLake::CNode& node);

// The result of one key lookup. A proxy serves the statement or the few lines that it is made in:
// it is good as long as the section and the line that it found stand in their lake.
class KESTRIN_API CLake::CNodeProxy {
 public:
  CNodeProxy(const CNodeProxy& other) = default;
  ~CNodeProxy() = default;

  bool exists() const;

  // NOLINTBEGIN(google-explicit-constructor): a proxy reads like a text and like a number
  // The value; empty on a miss. The view, good as long as the value isn't changed, makes a
  // std::wstring that is assigned a proxy take it as a text and not as the number of a character.
  operator std::wstring() const { return std::wstring(std::wstring_view(*this)); }
  operator std::wstring_view() const;

  // The decimal number at the start of the value, behind white space; 0 if there is none and on a
  // miss, the nearest bound if it is out of range.
  operator int() const;
  template <std::same_as<wchar_t> Character>
  operator Character() const = delete;  // for std::wstring{lake[key]}; round brackets serve
  // NOLINTEND(google-explicit-constructor)

  // A literal is no pointer to count from: join texts by std::wstring(lake[key]).
  template <std::size_t size>
  friend void operator+(const wchar_t (&)[size], const CNodeProxy&) = delete;
  template <std::size_t size>
  friend void operator+(const CNodeProxy&, const wchar_t (&)[size]) = delete;

  // The node found; only if it exists. That of a constant lake must not be changed.
  CNode& operator*();
  CNode* operator->() { return &**this; }
  const CNode& operator*() const;
  const CNode* operator->() const { return &**this; }

  // A variable becomes the other lookup; the lake stays as it is. What a lookup itself is assigned
  // is text: lake[a] = lake[b] sets the value of a.
  CNodeProxy& operator=(const CNodeProxy& other) & = default;

  // Sets the value of the line found, or on a miss adds a line of that key at the end of the
  // section. Faults of the caller, asserted in a debug build and without effect otherwise: a
  // section found, the text "{", an empty key, and a lookup that was made on a constant
  // node, and a miss in a line that is no section.
  CNodeProxy& operator=(const std::wstring& text);
  CNodeProxy& operator=(std::nullptr_t) = delete;  // 0 is no text

  // Makes the line found a section as `CNode::push_back` does, having added it on a miss; no
  // effect on a section. `push_back` then adds an unnamed line to it and returns its index. The
  // same faults of the caller as above but for the first two; the index is then 0.
  void make_section();
  unsigned int push_back(const std::wstring& text);

 private:
  friend class CNode;

  CNodeProxy(NodeList* collection, CNode* section, NodeList::iterator target, std::wstring key);
  bool insert_missing();

  NodeList* collection_;       // null only if the node asked belongs to no list
  CNode* section_;             // where a missing key is added; null if it must not be
  NodeList::iterator target_;  // the end of the list on a miss
  std::wstring key_;
};

// The candidate lake: the one from which the tables are loaded.
class KESTRIN_API CParameterLake {
 public:
  // Made empty on first use, which must not race; lives to the end of the process. The host fills
  // it; the library only reads it, and only during a load.
  static CLake& Lake();
};
