// The tree over the lines: how it is built, asked, copied and changed.
//
// There is one place where indexes are made, `CNode::Linker`. Whatever brings lines in (reading,
// copying, merging) brings pure lines, texts without indexes, and links them to the root.

#include "lake/Lake.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <utility>

#include "interfaces/text/Number.h"
#include "lake/LakeReader.h"

using namespace kestrin;

// ---------------------------------------------------------------------------------------- CLake

CLake::CLake(CString filename) : filename_(std::move(filename)), nodes_(new_nodes()) {
  if (!filename_.empty()) read({});
}

CLake::CLake(const CLake& other) { replace_lines(other.copied_lines()); }

CLake& CLake::operator=(const CLake& other) {
  if (this != &other) replace_lines(other.copied_lines());
  return *this;
}

CLake::~CLake() = default;

bool CLake::empty() const { return begin() == end(); }

void CLake::clear() { nodes_ = new_nodes(); }

void CLake::merge(const CLake& other) { link_root(other.copied_lines()); }

CLake::const_iterator CLake::begin() const { return std::next(nodes_->begin()); }

CLake::const_iterator CLake::end() const { return nodes_->end(); }

CLake::CNodeProxy CLake::operator[](const std::wstring& key) { return root()[key]; }

const CLake::CNodeProxy CLake::operator[](const std::wstring& key) const { return root()[key]; }

CLake::NodeList CLake::copied_lines() const {
  NodeList lines;
  for (const CNode& line : *this) lines.push_back(line.pure_line());
  return lines;
}

std::unique_ptr<CLake::NodeList> CLake::new_nodes() {
  auto nodes = std::make_unique<NodeList>(1);
  nodes->front().set_collection(*nodes);
  nodes->front().link(nodes->end());
  return nodes;
}

void CLake::replace_lines(NodeList&& lines) {
  auto nodes = new_nodes();
  nodes->splice(nodes->end(), lines);
  nodes->front().link(std::next(nodes->begin()));
  nodes_ = std::move(nodes);
}

void CLake::link_root(NodeList&& more) {
  // Lines that are linked by halves are no lake. What takes their place then has to be there
  // before.
  auto nothing = new_nodes();
  nodes_->splice(nodes_->end(), more);
  try {
    root().clear();
    root().set_collection(*nodes_);
    auto outside = root().link(std::next(nodes_->begin()));
    for (; outside != nodes_->end(); ++outside) outside->unlink();
  } catch (...) {
    nodes_ = std::move(nothing);
    throw;
  }
}

// ------------------------------------------------------------------------------- CLake::CNode

CLake::CNode::CNode(NodeList& list, std::wstring_view key, std::wstring_view value,
                    std::wstring_view comment)
    : collection_(&list), value_(value) {
  if (!key.empty()) own_extra().key = key;
  if (!comment.empty()) own_extra().comment = comment;
}

CLake::CNode::CNode(const CNode& other)
    : collection_(other.collection_),
      value_(other.value_),
      extra_(other.extra_ ? std::make_unique<Extra>(*other.extra_) : nullptr),
      depth_(other.depth_),
      is_section_(other.is_section_) {}

CLake::CNode& CLake::CNode::operator=(const CNode& other) {
  return *this = CNode(other);  // NOLINT(misc-unconventional-assign-operator): it is *this
}

CLake::CNode::Extra& CLake::CNode::own_extra() {
  if (!extra_) extra_ = std::make_unique<Extra>();
  return *extra_;
}

const CLake::CNode::Extra& CLake::CNode::no_extra() {
  static const Extra none;
  return none;
}

void CLake::CNode::value(const std::wstring& text) {
  assert(!is_section_);
  if (!is_section_) value_ = text;
}

void CLake::CNode::comment(const std::wstring& text) {
  assert(!is_section_);
  if (!is_section_) own_extra().comment = text;
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
  const auto found =
      std::find_if(lines.begin(), lines.end(), [&](auto line) { return line->value_ == value; });
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
  auto& unnamed = own_extra().unnamed;
  auto& line = unnamed.emplace_back(extra_->end);
  try {
    line = collection_->emplace(extra_->end, *collection_, L"", text, L"");
  } catch (...) {
    unnamed.pop_back();
    throw;
  }
  line->depth_ = depth_ + 1;
  return unnamed_size() - 1;
}

void CLake::CNode::clear_section() {
  if (!extra_) return;
  if (collection_) {
    for (const auto& [key, line] : extra_->named) collection_->erase(line);
    for (const auto line : extra_->unnamed) collection_->erase(line);
  }
  extra_->named.clear();
  extra_->unnamed.clear();
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
  Extra& children = *section.extra_;
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
  value_.clear();
  unlink();
  if (!extra_) return;
  extra_->key.clear();
  extra_->end = end;
}

bool CLake::CNode::opens_section() const { return value_.size() == 1 && value_.front() == L'{'; }

// Forgets the place in a tree, and what other lines have made of this one: it is as it would come
// from a file. Linking finds the rest anew.
void CLake::CNode::unlink() {
  collection_ = nullptr;
  depth_ = -1;
  is_section_ = opens_section();
  if (!extra_) return;
  extra_->named.clear();
  extra_->unnamed.clear();
  extra_->end = {};
}

// The texts alone, as `unlink` would leave them.
CLake::CNode CLake::CNode::pure_line() const {
  CNode line;
  line.value_ = value_;
  if (!key().empty()) line.own_extra().key = key();
  if (!comment().empty()) line.own_extra().comment = comment();
  line.is_section_ = opens_section();
  return line;
}

void CLake::CNode::begin_section() {
  Extra& children = own_extra();
  children.named.clear();
  children.unnamed.clear();
  children.end = collection_->end();
  is_section_ = true;
}

CLake::NodeList::iterator CLake::CNode::insert(const std::wstring& key) {
  Extra& children = own_extra();
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
  Extra& own = own_extra();
  own.end = collection_->emplace(std::next(self), *collection_, L"", L"}", own.key);
  own.end->depth_ = depth_;
  own.comment.clear();  // behind a "{" it would be read back as a part of the value
  value_ = L"{";
  is_section_ = true;
}

// A node that was read from a stream as the start of a section has no end until it is linked.
void CLake::CNode::make_end() {
  Extra& own = own_extra();
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
