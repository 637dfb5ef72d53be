// The tree over the lines: how it is built, asked, copied and changed.
//
// There is one place where the indexes of nodes are made, `CNode::Linker`. Whatever brings nodes in
// (a text, copying, merging) brings pure lines, texts without indexes, and links them to the root.

#include "lake/Lake.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <utility>

#include "interfaces/text/Number.h"
#include "lake/LakeReader.h"

using namespace kestrin;

// ---------------------------------------------------------------------------------------- CLake

namespace {

// Counted in bytes, block by block: compilers make that six times as fast as a count of all.
std::size_t CountLines(std::string_view text) {
  constexpr std::size_t block = 255;
  std::size_t count = text.empty() || text.ends_with('\n') ? 0 : 1;
  for (; !text.empty(); text.remove_prefix(std::min(block, text.size()))) {
    const std::string_view part = text.substr(0, block);
    count += std::accumulate(part.begin(), part.end(), std::uint8_t{}, [](std::uint8_t n, char c) {
      return static_cast<std::uint8_t>(n + (c == '\n' ? 1 : 0));
    });
  }
  return count;
}

std::optional<std::string_view> NextRow(LineWalk& walk) {
  while (walk.Next()) {
    if (walk.IsRow()) return walk.Line().value;
  }
  return std::nullopt;
}

// Of a section; without a colon or a bracket all its lines are rows.
std::size_t CountRows(std::string_view lines) {
  if (lines.find(':') == lines.npos && lines.find('{') == lines.npos) return CountLines(lines);
  std::size_t count = 0;
  for (LineWalk walk(lines); NextRow(walk);) ++count;
  return count;
}

}  // namespace

CLake::CLake(CString filename) : filename_(std::move(filename)) {
  if (!filename_.empty()) read({});
}

CLake::CLake(const CLake& other) { *this = other; }

CLake& CLake::operator=(const CLake& other) {
  if (this == &other) return *this;
  lines_.Set(other.lines_.Get() == nullptr ? nullptr : other.make_lines());
  text_ = other.text_;
  return *this;
}

CLake::~CLake() = default;

bool CLake::empty() const {
  if (const Lines* const lines = lines_.Get()) return lines->nodes.size() < 2;
  return text_ == nullptr || text_->lines.empty();
}

void CLake::clear() {
  lines_.Set(nullptr);
  text_.reset();
}

void CLake::merge(const CLake& other) {
  if (empty() && lines_.Get() == nullptr) {
    *this = other;
    return;
  }
  lines();
  const auto more = other.make_lines();
  more->nodes.pop_front();
  link_root(std::move(*more));
}

CLake::const_iterator CLake::begin() const { return std::next(lines().nodes.begin()); }

CLake::const_iterator CLake::end() const { return lines().nodes.end(); }

CLake::CNode& CLake::root() { return lines().nodes.front(); }

const CLake::CNode& CLake::root() const { return lines().nodes.front(); }

CLake::CNodeProxy CLake::operator[](const std::wstring& key) { return root()[key]; }

const CLake::CNodeProxy CLake::operator[](const std::wstring& key) const { return root()[key]; }

CLake::Lines& CLake::lines() const {
  return lines_.GetOr([this] { return make_lines(); });
}

std::unique_ptr<CLake::Lines> CLake::make_lines() const {
  auto copy = std::make_unique<Lines>();
  NodeList& nodes = copy->nodes;
  CNode& root = nodes.emplace_back();
  root.set_collection(nodes);
  CNode::Linker linker(root);
  bool in_root = true;  // behind a closing line too many no line belongs to the root
  const auto link_last = [&] { in_root = in_root && linker.add(std::prev(nodes.end())); };
  if (const Lines* const lines = lines_.Get()) {
    copy->texts = lines->texts;
    for (const CNode& line : *this) {
      nodes.emplace_back().copy_texts(line);
      link_last();
    }
  } else if (text_ != nullptr) {
    copy->texts.insert(text_);
    for (LineWalk walk(text_->lines); walk.Next();) {
      nodes.emplace_back().set_line(walk.Line());
      link_last();
    }
  }
  return copy;
}

void CLake::link_root(Lines&& more) {
  NodeList& nodes = lines().nodes;
  if (empty()) lines().texts.clear();
  nodes.splice(nodes.end(), more.nodes);
  lines().texts.merge(more.texts);
  text_.reset();
  try {
    root().clear();
    root().set_collection(nodes);
    auto outside = root().link(std::next(nodes.begin()));
    for (; outside != nodes.end(); ++outside) outside->unlink();
  } catch (...) {
    clear();  // lines that are linked by halves are no lake
    throw;
  }
}

RootLine CLake::root_line(const std::wstring& key) const {
  if (lines_.Get() != nullptr) {
    const CNodeProxy found = (*this)[key];
    if (!found.exists()) return {};
    const auto rows = [row = found->begin_unnamed(), end = found->end_unnamed(),
                       room = std::string()]() mutable -> std::optional<std::string_view> {
      if (row == end) return std::nullopt;
      return (*row++)->bytes(room);
    };
    return {true, found->is_section(), found->value(), found->unnamed_size(), rows};
  }
  if (text_ == nullptr) return {};
  const auto found = text_->tops.find(key);
  if (found == text_->tops.end()) return {};
  const auto& [value, is_section, lines] = found->second;
  return {true, is_section, Text::FromBytes(value), CountRows(lines),
          [walk = LineWalk(lines)]() mutable { return NextRow(walk); }};
}

// ------------------------------------------------------------------------------- CLake::CNode

CLake::CNode::CNode(NodeList& list, std::wstring_view key, std::wstring_view value,
                    std::wstring_view comment)
    : CNode() {
  set_texts(std::wstring(key), std::wstring(value), std::wstring(comment));
  collection_ = &list;
}

// A copy may outlive the lake, so it has a text of its own.
CLake::CNode::CNode(const CNode& other) : CNode() {
  value(other.wide() != nullptr ? other.wide()->value : Text::FromBytes(other.bytes_));
  if (const Extra* const extra = other.own_extra()) make_extra() = *extra;
  collection_ = other.collection_;
  depth_ = other.depth_;
  is_section_ = other.is_section_;
}

CLake::CNode& CLake::CNode::operator=(const CNode& other) {
  CNode copy(other);
  std::swap(own_wide(), copy.own_wide());  // not the pointers: who has the value keeps seeing it
  collection_ = copy.collection_;
  bytes_ = copy.bytes_;
  depth_ = copy.depth_;
  is_section_ = copy.is_section_;
  return *this;
}

CLake::CNode::~CNode() = default;

CLake::CNode::Wide& CLake::CNode::own_wide() const {
  return wide_.GetOr([this] {
    return std::make_unique<Wide>(Wide{Text::FromBytes(bytes_), nullptr});
  });
}

const CLake::CNode::Extra& CLake::CNode::no_extra() {
  static const Extra none;
  return none;
}

CLake::CNode::Extra& CLake::CNode::make_extra() {
  Wide& own = own_wide();
  if (!own.extra) own.extra = std::make_unique<Extra>();
  return *own.extra;
}

const std::wstring& CLake::CNode::value() const { return own_wide().value; }

std::string_view CLake::CNode::bytes(std::string& room) const {
  if (!has_own_value()) return bytes_;
  return room = Text::ToBytes(value());
}

void CLake::CNode::set_texts(std::wstring key, std::wstring value, std::wstring comment) {
  Wide& own = own_wide();
  if (own.extra || !key.empty() || !comment.empty()) {
    Extra& extra = make_extra();
    extra.key = std::move(key);
    extra.comment = std::move(comment);
  }
  own.value = std::move(value);
  bytes_ = {};
}

void CLake::CNode::value(const std::wstring& text) {
  assert(!is_section_);
  if (is_section_) return;
  own_wide().value = text;
  bytes_ = {};
}

void CLake::CNode::comment(const std::wstring& text) {
  assert(!is_section_);
  if (!is_section_) make_extra().comment = text;
}

CLake::CNode& CLake::CNode::operator=(const std::wstring& text) {
  assert(text != L"{");
  if (text != L"{") value(text);
  return *this;
}

CLake::NodeList::iterator CLake::CNode::find(const std::wstring& key) const {
  if (!is_section_) return extra().end;
  const auto found = extra().named.find(key);
  return found != extra().named.end() ? found->second : extra().end;
}

int CLake::CNode::find_value(const std::wstring& value) const {
  if (!is_section_) return -1;
  const auto& lines = extra().unnamed;
  const std::string wanted = Text::ToBytes(value);
  std::string room;
  const auto found = std::find_if(lines.begin(), lines.end(),
                                  [&](auto line) { return line->bytes(room) == wanted; });
  return found == lines.end() ? -1 : static_cast<int>(found - lines.begin());
}

CLake::CNodeProxy CLake::CNode::look_up(const std::wstring& key, CNode* owner) const {
  assert(collection_);
  const auto target = find(key);
  const bool miss = collection_ && target == extra().end;
  return {collection_, owner, miss ? collection_->end() : target, key};
}

CLake::CNodeProxy CLake::CNode::operator[](const std::wstring& key) { return look_up(key, this); }

const CLake::CNodeProxy CLake::CNode::operator[](const std::wstring& key) const {
  return look_up(key, nullptr);
}

unsigned int CLake::CNode::push_back(const std::wstring& text) {
  assert(collection_);
  if (!collection_) return 0;
  if (!is_section_) {
    const auto self = position();
    assert(self != collection_->end());
    if (self == collection_->end()) return 0;
    make_section(self);
  }
  make_end();
  Extra& own = make_extra();
  auto& line = own.unnamed.emplace_back(own.end);
  try {
    line = collection_->emplace(own.end, *collection_, L"", text, L"");
  } catch (...) {
    own.unnamed.pop_back();
    throw;
  }
  line->depth_ = depth_ + 1;
  return unnamed_size() - 1;
}

void CLake::CNode::clear_section() {
  Extra* const own = own_extra();
  if (own == nullptr) return;
  if (collection_) {
    for (const auto& [key, line] : own->named) collection_->erase(line);
    for (const auto line : own->unnamed) collection_->erase(line);
  }
  own->named.clear();
  own->unnamed.clear();
}

CLake::NodeList::iterator CLake::CNode::link(NodeList::iterator first) {
  assert(collection_);
  if (!collection_) return first;
  Linker linker(*this);
  while (first != collection_->end()) {
    if (!linker.add(first++)) return first;
  }
  return first;
}

CLake::CNode::Linker::Linker(CNode& section) : open_{&section} { section.begin_section(); }

bool CLake::CNode::Linker::add(NodeList::iterator line) {
  CNode& section = *open_.back();
  Extra& children = *section.own_extra();
  line->unlink();
  line->collection_ = section.collection_;
  line->depth_ = section.depth_ + 1;

  // Of several lines with one key the first stands for all, also as the section that a later one
  // opens.
  CNode* target = &*line;
  if (line->is_named()) {
    target = &*children.named.try_emplace(line->key(), line).first->second;
  } else if (line->is_closing()) {
    line->depth_ = section.depth_;
    children.end = line;
    children.unnamed.shrink_to_fit();  // up to half of the room would stay empty
    open_.pop_back();
    return !open_.empty();
  } else {
    children.unnamed.push_back(line);
  }
  if (line->opens_section()) {
    target->begin_section();
    open_.push_back(target);
  }
  return true;
}

void CLake::CNode::clear() {
  const auto end = extra().end;
  bytes_ = {};
  if (wide() != nullptr) own_wide().value.clear();
  unlink();
  if (Extra* const own = own_extra()) {
    own->key.clear();
    own->end = end;
  }
}

// Forgets the place in a tree, and what other lines have made of this one: it is as it would come
// from a file. Linking finds the rest anew.
void CLake::CNode::unlink() {
  collection_ = nullptr;
  depth_ = -1;
  is_section_ = opens_section();
  Extra* const own = own_extra();
  if (own == nullptr) return;
  own->named.clear();
  own->unnamed.clear();
  own->end = {};
}

// Makes a new node the line that `unlink` would leave of the other one, in a lake that shares the
// text.
void CLake::CNode::copy_texts(const CNode& other) {
  bytes_ = other.bytes_;
  if (other.has_own_value()) own_wide().value = other.value();
  if (other.is_named() || !other.comment().empty()) {
    Extra& own = make_extra();
    own.key = other.key();
    own.comment = other.comment();
  }
  is_section_ = opens_section();
}

void CLake::CNode::begin_section() {
  Extra& children = make_extra();
  children.named.clear();
  children.unnamed.clear();
  children.end = collection_->end();
  is_section_ = true;
}

CLake::NodeList::iterator CLake::CNode::insert(const std::wstring& key) {
  Extra& children = make_extra();
  assert(is_section_ && collection_ && children.named.count(key) == 0);
  if (const auto there = children.named.find(key); there != children.named.end()) {
    return there->second;
  }
  make_end();
  const auto place = children.named.emplace(key, children.end).first;
  try {
    place->second = collection_->emplace(children.end, *collection_, key, L"", L"");
  } catch (...) {
    children.named.erase(place);
    throw;
  }
  place->second->depth_ = depth_ + 1;
  return place->second;
}

// The closing line stands directly behind the line itself, which has no lines of its own yet: so
// what is written nests as the tree does, whatever siblings have been added since.
void CLake::CNode::make_section(NodeList::iterator self) {
  if (is_section_) return;
  Extra& own = make_extra();
  own.end = collection_->emplace(std::next(self), *collection_, L"", L"}", own.key);
  own.end->depth_ = depth_;
  own.comment.clear();  // behind a "{" it would be read back as a part of the value
  own_wide().value = L"{";
  bytes_ = "{";
  is_section_ = true;
}

// A node that was read from a stream as the start of a section has no end until it is linked.
void CLake::CNode::make_end() {
  Extra& own = make_extra();
  if (own.end == NodeList::iterator()) own.end = collection_->end();
}

// Where this node stands in its list, or the end if it is a copy. Searched from the back, where
// lines made in memory stand.
CLake::NodeList::iterator CLake::CNode::position() const {
  auto place = collection_->end();
  while (place != collection_->begin()) {
    if (&*--place == this) return place;
  }
  return collection_->end();
}

// -------------------------------------------------------------------------- CLake::CNodeProxy

CLake::CNodeProxy::CNodeProxy(NodeList* collection, CNode* section, NodeList::iterator target,
                              std::wstring key)
    : collection_(collection), section_(section), target_(target), key_(std::move(key)) {}

bool CLake::CNodeProxy::exists() const { return collection_ && target_ != collection_->end(); }

CLake::CNodeProxy::operator std::wstring_view() const {
  return exists() ? target_->value() : std::wstring_view();
}

CLake::CNodeProxy::operator int() const {
  return exists() ? Number::ScanInt(target_->value()).value : 0;
}

CLake::CNode& CLake::CNodeProxy::operator*() {
  assert(exists());
  return *target_;
}

const CLake::CNode& CLake::CNodeProxy::operator*() const {
  assert(exists());
  return *target_;
}

// True when there is a line now, found or added.
bool CLake::CNodeProxy::insert_missing() {
  if (exists() && section_) return true;
  const bool allowed = collection_ && section_ && section_->is_section() && !key_.empty();
  assert(allowed);
  if (allowed) target_ = section_->insert(key_);
  return allowed;
}

CLake::CNodeProxy& CLake::CNodeProxy::operator=(const std::wstring& text) {
  assert(text != L"{");
  if (text != L"{" && insert_missing()) target_->value(text);
  return *this;
}

void CLake::CNodeProxy::make_section() {
  if (insert_missing()) target_->make_section(target_);
}

unsigned int CLake::CNodeProxy::push_back(const std::wstring& text) {
  if (!insert_missing()) return 0;
  make_section();
  return target_->push_back(text);
}
