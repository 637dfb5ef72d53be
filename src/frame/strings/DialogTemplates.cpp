#include "frame/strings/DialogTemplates.h"

#include <map>

#include "frame/strings/ModuleStrings.h"
#include "frame/strings/TextCatalogue.h"
#include "interfaces/windows/Dialog3d.h"

using namespace kestrin;

namespace {

constexpr CRect Box(int left, int top, int width, int height) {
  return {left, top, left + width, top + height};
}

DialogTemplate KeySpecification(const Language& language) {
  using Kind = DialogItem::Kind;
  constexpr int id = DialogId::key_specification;
  const bool has_texts = TextCatalogue::Of(language).Find(id, id);
  const TextCatalogue& texts = TextCatalogue::Of(has_texts ? language : Languages().front());
  const auto text = [&](int item) {
    const CString* const found = texts.Find(id, item);
    return found ? *found : CString();
  };
  return {.title = text(id),
          .width = 168,
          .height = 110,
          .font = L"MS Shell Dlg",
          .font_size = 8,
          .items = {{1, Kind::default_button, Box(111, 89, 50, 14), text(1)},
                    {2, Kind::button, Box(7, 89, 50, 14), text(2)},
                    {3000, Kind::list, Box(7, 7, 154, 77), {}}}};
}

class Resources : public ResourceModule {
 public:
  const DialogTemplate* FindDialog(unsigned int template_id) const override {
    // Never destroyed, like the texts: a window may be taken down late.
    static const auto* const by_language = [] {
      auto* const made = new std::map<int, DialogTemplate>;
      for (const Language& language : Languages()) {
        made->emplace(language.id, KeySpecification(language));
      }
      return made;
    }();
    if (template_id != DialogId::key_specification) return nullptr;
    return &by_language->at(UserLanguage().id);
  }
};

}  // namespace

const ResourceModule& kestrin::LibraryResources() {
  static const auto* const resources = new Resources;
  return *resources;
}
