// Filling the combo of one key element.
#include "controls/ClavisComboBox.h"

#include "controls/OfferedIds.h"
#include "frame/strings/ModuleStrings.h"

using namespace kestrin;

void CClavisComboBox::Fill(Clavis::qOrder element, int selected, unsigned int filter) {
  element_ = element;
  FillWith(OfferedIds::OfElement(element, {filter, hide_virtual_modes_},
                                 OfferedIds::Reading::name_and_id),
           selected);
}

void CClavisComboBox::FillIp(int instrument, int selected) {
  element_ = Clavis::Parameter;
  if (instrument == -1) {
    FillWith({}, -1);
  } else {
    FillWith(OfferedIds::OfInstrument(instrument, OfferedIds::Reading::name_and_id), selected);
  }
}

int CClavisComboBox::Retrieve() const { return GetItemData(GetCurSel()); }

void CClavisComboBox::FillWith(const std::vector<OfferedIds::Entry>& entries, int selected) {
  ResetContent();
  const int none = Add(LoadModuleString(StringId::not_assigned), -1);
  int selection = selected == -1 ? none : -1;
  for (const OfferedIds::Entry& entry : entries) {
    const int index = Add(entry.text, entry.id);
    if (entry.id == selected) selection = index;
  }
  if (selected >= 0 && selection == -1) {
    selection = Add(OfferedIds::UnknownText(element_, selected), selected);
  }
  SetCurSel(selection);
}

int CClavisComboBox::Add(std::wstring_view text, int id) {
  const int index = AddString(text);
  SetItemData(index, id);
  return index;
}
