#include "frame/strings/TextCatalogue.h"

#include <algorithm>
#include <optional>

#include "frame/strings/EmbeddedTexts.h"
#include "frame/strings/ModuleStrings.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"

using namespace kestrin;

namespace {

constexpr int system_default = 2048;
constexpr std::string_view no_file;

// No number if anything else stands there.
std::optional<int> ReadNumber(std::wstring_view field) {
  const auto number = Number::ScanInt(field);
  if (number.state != Number::State::ok || number.used != field.size()) return std::nullopt;
  return number.value;
}

std::optional<int> ReadGroup(std::wstring_view line) {
  constexpr std::wstring_view head = L"[dialog ";
  if (!line.starts_with(head) || !line.ends_with(L']')) return std::nullopt;
  return ReadNumber(line.substr(head.size(), line.size() - head.size() - 1));
}

}  // namespace

TextCatalogue::TextCatalogue(std::string_view file) {
  const std::wstring whole = Text::FromUtf8(file);
  int group = string_table;
  for (std::wstring_view rest = whole; !rest.empty();) {
    const std::size_t end = std::min(rest.find(L'\n'), rest.size() - 1);
    const std::wstring_view line = Text::Trim(rest.substr(0, end + 1));
    rest.remove_prefix(end + 1);
    const std::size_t tab = line.find(L'\t');
    if (const auto next = ReadGroup(line)) {
      group = *next;
    } else if (const auto id = ReadNumber(line.substr(0, tab)); id && tab < line.size()) {
      texts_.emplace(std::pair(group, *id), Text::Trim(line.substr(tab)));
    }
  }
}

const TextCatalogue& TextCatalogue::Of(const Language& language) {
  // Never destroyed: objects that die at process end may still ask for a text.
  static const auto* const all = [] {
    auto* const read = new std::map<std::string_view, TextCatalogue>;
    for (const EmbeddedText& file : EmbeddedTexts()) read->try_emplace(file.name, file.text);
    read->try_emplace(no_file, std::string_view());
    return read;
  }();
  // The default of the system has no file of its own.
  const auto found = all->find(language.id == system_default ? "en" : language.tag);
  return found == all->end() ? all->at(no_file) : found->second;
}

const std::wstring* TextCatalogue::Find(int group, int id) const {
  const auto found = texts_.find({group, id});
  return found == texts_.end() ? nullptr : &found->second;
}
