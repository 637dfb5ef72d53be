// The texts of one language, read from its file.
//
// A file is made for translators, who have an editor and no compiler:
//
//     # a comment
//     7<tab>Section              an id and its text
//     [dialog 3002]              from here on ids are those of the items of that dialog,
//     3002<tab>Key Specification and its own number stands for its title
//
// Texts lose white space at their ends. A line of any other form is skipped, so that a slip of the
// pen costs one text and not the language; of two lines with one id the first counts.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace kestrin {
struct Language;
}  // namespace kestrin

class TextCatalogue {
 public:
  // The group of the string table; the group of a dialog is the dialog's number.
  static constexpr int string_table = 0;

  explicit TextCatalogue(std::string_view file);

  // The catalogue of a language; empty for one that has no file. All files are read on the first
  // call, from any thread, and stay to the end of the process.
  static const TextCatalogue& Of(const kestrin::Language& language);

  // Null if there is no such text.
  const std::wstring* Find(int group, int id) const;

 private:
  std::map<std::pair<int, int>, std::wstring> texts_;  // by group and id
};
