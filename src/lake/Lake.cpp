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

CLake::CLake(CString filename) : filename_(std::move(filename)), lines_(new_lines()) {
  if (!filename_.empty()) read({});
}

CLake::CLake(const CLake& other) { replace_lines(other.copied_lines()); }

CLake& CLake::operator=(const CLake& other) {
  if (this != &other) replace_lines(other.copied_lines());
  return *this;
}

CLake::~CLake() = default;

bool CLake::empty() const { return begin() == end(); }

void CLake::clear() { lines_ = new_lines(); }

void CLake::merge(const CLake& other) { link_root(other.copied_lines()); }

CLake::const_iterator CLake::begin() const { return std::next(lines_->nodes.begin()); }

CLake::const_iterator CLake::end() const { return lines_->nodes.end(); }

CLake::CNodeProxy CLake::operator[](const std::wstring& key) { return root()[key]; }

const CLake::CNodeProxy CLake::operator[](const std::wstring& key) const { return root()[key]; }

CLake::Lines CLake::copied_lines() const {
  Lines lines{{}, lines_->texts};
  for (const CNode& line : *this) lines.nodes.emplace_back().copy_texts(line);
  return lines;
}

std::unique_ptr<CLake::Lines> CLake::new_lines() {
  auto lines = std::make_unique<Lines>();
  CNode& root = lines->nodes.emplace_back();
  root.set_collection(lines->nodes);
  root.link(lines->nodes.end());
  return lines;
}

void CLake::replace_lines(Lines&& lines) {
  auto all = new_lines();
  NodeList& nodes = all->nodes;
  nodes.splice(nodes.end(), lines.nodes);
  all->texts = std::move(lines.texts);
  nodes.front().link(std::next(nodes.begin()));
  lines_ = std::move(all);
}

void CLake::link_root(Lines&& more) {
  // Lines that are linked by halves are no lake. What takes their place then has to be there
  // before.
  auto nothing = new_lines();
  NodeList& nodes = lines_->nodes;
  if (empty()) lines_->texts.clear();
  nodes.splice(nodes.end(), more.nodes);
  lines_->texts.merge(more.texts);
  try {
    root().clear();
    root().set_collection(nodes);
    auto outside = root().link(std::next(nodes.begin()));
    for (; outside != nodes.end(); ++outside) outside->unlink();
  } catch (...) {
    lines_ = std::move(nothing);
    throw;
  }
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

CLake::CNode::~CNode() { delete wide(); }

CLake::CNode::Wide& CLake::CNode::own_wide() const {
  if (Wide* const there = wide()) return *there;
  auto made = std::make_unique<Wide>(Wide{Text::FromBytes(bytes_), nullptr});
  Wide* first = nullptr;
  const bool is_first = wide_.compare_exchange_strong(first, made.get());
  return is_first ? *made.release() : *first;
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
