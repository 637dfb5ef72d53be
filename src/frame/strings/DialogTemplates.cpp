// From layout files and texts to templates.
//
//     dialog          3002  0  0  168  110     the dialog: its number and its size
//     font            8     MS Shell Dlg       size in points, name
//     default_button  1     111  89  50  14    an item: id, then left, top, width and height
#include "frame/strings/DialogTemplates.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frame/strings/EmbeddedTexts.h"
#include "frame/strings/ModuleStrings.h"
#include "frame/strings/TextCatalogue.h"
#include "frame/strings/TextLines.h"
#include "interfaces/text/Text.h"
#include "interfaces/windows/Dialog3d.h"

using namespace kestrin;

namespace {

constexpr std::pair<std::wstring_view, DialogItem::Kind> kinds[] = {
    {L"button", DialogItem::Kind::button},
    {L"default_button", DialogItem::Kind::default_button},
    {L"list", DialogItem::Kind::list},
    {L"combo", DialogItem::Kind::combo},
};

std::optional<DialogItem::Kind> ReadKind(std::wstring_view field) {
  for (const auto& [name, kind] : kinds) {
    if (name == field) return kind;
  }
  return std::nullopt;
}

struct Layout {
  int id = 0;
  DialogTemplate dialog;  // without texts
};

void ReadPlacedLine(Layout& layout, const std::vector<std::wstring_view>& fields) {
  std::array<int, 5> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto number = ReadNumber(fields[i + 1]);
    if (!number) return;
    numbers[i] = *number;
  }
  const auto [id, left, top, width, height] = numbers;
  if (fields[0] == L"dialog") {
    layout.id = id;
    layout.dialog.width = width;
    layout.dialog.height = height;
  } else if (const auto kind = ReadKind(fields[0])) {
    layout.dialog.items.push_back({id, *kind, {left, top, left + width, top + height}, {}});
  }
}

// Comments and lines of another form are skipped.
Layout ReadLayout(std::string_view file) {
  Layout layout;
  const std::wstring whole = Text::FromUtf8(file);
  for (const std::wstring_view line : Split(whole, L'\n')) {
    const std::vector<std::wstring_view> fields = Split(line, L'\t');
    if (fields.size() == 6) ReadPlacedLine(layout, fields);
    if (fields.size() == 3 && fields[0] == L"font") {
      layout.dialog.font_size = ReadNumber(fields[1]).value_or(0);
      layout.dialog.font = fields[2];
    }
  }
  return layout;
}

DialogTemplate WithTexts(const Layout& layout, const Language& language) {
  const bool has_texts = TextCatalogue::Of(language).Find(layout.id, layout.id);
  const TextCatalogue& texts = TextCatalogue::Of(has_texts ? language : Languages().front());
  const auto text = [&](int id) {
    const CString* const found = texts.Find(layout.id, id);
    return found ? *found : CString();
  };
  DialogTemplate dialog = layout.dialog;
  dialog.title = text(layout.id);
  for (DialogItem& item : dialog.items) item.text = text(item.id);
  return dialog;
}

using Templates = std::map<std::pair<int, int>, DialogTemplate>;  // by dialog and language

Templates MakeTemplates() {
  Templates templates;
  for (const EmbeddedText& file : EmbeddedTexts()) {
    if (!file.name.starts_with("dialog")) continue;
    const Layout layout = ReadLayout(file.text);
    for (const Language& language : Languages()) {
      templates.emplace(std::pair(layout.id, language.id), WithTexts(layout, language));
    }
  }
  return templates;
}

class Resources : public ResourceModule {
 public:
  const DialogTemplate* FindDialog(unsigned int template_id) const override {
    return FindDialogTemplate(static_cast<int>(template_id), UserLanguage());
  }
};

}  // namespace

namespace kestrin {

const DialogTemplate* FindDialogTemplate(int id, const Language& language) {
  // Never destroyed, like the texts: a window may be taken down late.
  static const auto* const templates = new Templates(MakeTemplates());
  const auto found = templates->find({id, language.id});
  return found == templates->end() ? nullptr : &found->second;
}

const ResourceModule& LibraryResources() {
  static const Resources resources;
  return resources;
}

}  // namespace kestrin
