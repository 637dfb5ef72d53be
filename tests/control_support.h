// What the tests of controls share: the data base of the process, which is the one that controls
// ask, and pictures as text.
#pragma once

#include <cstddef>

#include "frame/strings/ModuleStrings.h"
#include "interfaces/windows/ComboBoxX.h"
#include "interfaces/windows/TextView.h"
#include "support.h"

// A data base of the process and a user who reads English.
class ProcessBase : public testing::Test {
 protected:
  explicit ProcessBase(const std::string& sections) {
    SetUserLanguage("en");
    Load(sections);
  }
  ~ProcessBase() override {
    CQtParamInstance::ShowIdsInDialogs(false);
    params_.PurgeTables();
  }

  void Load(const std::string& sections) {
    const Log log;
    params_.PurgeTables();
    FillCandidateLake(version + sections);
    EXPECT_TRUE(params_.ReadTablesFromCandidateLake());
    CParameterLake::Lake().clear();
    EXPECT_TRUE(log.lines.empty()) << Text::ToUtf8(log.Text());
  }

 private:
  CQtParamInstance params_;
};

// Puts a blank, a mark and "text=id" behind what is there.
inline void AddEntry(std::string& all, const char* mark, const CString& text, int id) {
  all += " " + (mark + Text::ToUtf8(text)) + "=" + std::to_string(id);
}

// Every entry with its data, the selected one behind a *.
inline std::string Entries(const CComboBox& combo) {
  std::string all;
  for (int i = 0; i < combo.GetCount(); ++i) {
    AddEntry(all, i == combo.GetCurSel() ? "*" : "", combo.GetLBText(i), combo.GetItemData(i));
  }
  return all;
}

// Pictures beside each other, below an empty line.
inline std::string SideBySide(const std::vector<TextView::Lines>& pictures) {
  std::string out = "\n";
  std::size_t height = 0;
  for (const TextView::Lines& picture : pictures) height = std::max(height, picture.size());
  for (std::size_t y = 0; y < height; ++y) {
    for (const TextView::Lines& picture : pictures) {
      const auto width = static_cast<std::size_t>(TextColumns(picture.at(0)));
      out += Text::ToUtf8(y < picture.size() ? picture[y] : CString(width, L' '));
      out += &picture == &pictures.back() ? "\n" : "  ";
    }
  }
  return out;
}
