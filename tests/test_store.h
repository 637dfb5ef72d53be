// A data base of a test's own: the text of a parameter file goes through the candidate lake into a
// store that is not the process's, and what is logged meanwhile is kept.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/sea/PrWin.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/text/Text.h"
#include "lake_bytes.h"

using namespace kestrin;

namespace testing_support {

// Keeps what is logged while it lives.
class Log {
 public:
  struct Line {
    std::wstring text;
    int category;
    int style;
    friend bool operator==(const Line&, const Line&) = default;
  };

  Log()
      : before_(PrWin::SetSink([this](std::wstring_view text, auto category, auto style) {
          lines.push_back({std::wstring(text), category, style});
        })) {}
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  ~Log() { PrWin::SetSink(std::move(before_)); }

  std::wstring Text() const {
    std::wstring text;
    for (const Line& line : lines) text += line.text;
    return text;
  }

  std::vector<Line> lines;

 private:
  PrWin::Sink before_;
};

// A section of a file; each row ends with a line feed.
inline std::string Section(const std::string& name, const std::string& rows) {
  return "<" + name + ">: {\n" + rows + "}\n";
}

using Lines = std::vector<std::wstring>;

inline Lines LinesOf(const CResourceSea& sea, const wchar_t* list) {
  Lines lines;
  for (CResourceList view(&sea, list); view.IsValid(); view.GotoNext()) {
    view.GetCurrentLine()->GetLine(lines.emplace_back());
  }
  return lines;
}

inline void AddLines(CResourceSea& sea, const wchar_t* list, const Lines& lines) {
  CResourceList view(&sea, list);
  for (const std::wstring& line : lines) view.AddLineTail()->SetSeaLine(line.c_str());
}

inline constexpr const char* version =
    "<DbDesign.CacheVersion>: 215\n<DbDesign.CacheMinorVersion>: 1\n";

// Fills the candidate lake with a file of this text (UTF-8, without the mark).
inline void FillCandidateLake(std::string_view text) {
  const ScratchFile file("\xEF\xBB\xBF" + std::string(text));
  CParameterLake::Lake().clear();
  CParameterLake::Lake().read(file.name());
}

class TestStore {
 public:
  TestStore() : params(&store) {}
  explicit TestStore(std::string_view sections) : TestStore() { Load(sections); }

  // Loads a data base of these sections behind the version lines; the candidate lake is then empty.
  bool Load(std::string_view sections) { return LoadText(version + std::string(sections)); }

  // The same for the whole text of a file.
  bool LoadText(std::string_view text) {
    FillCandidateLake(text);
    const bool loaded = params.ReadTablesFromCandidateLake();
    CParameterLake::Lake().clear();
    return loaded;
  }

  // The sample gearbox.
  bool LoadSample() {
    CParameterLake::Lake().clear();
    CParameterLake::Lake().read(Text::FromUtf8(KESTRIN_SAMPLES "/gearbox.par"));
    const bool loaded = params.ReadTablesFromCandidateLake();
    CParameterLake::Lake().clear();
    return loaded;
  }

  Log log;
  CQtParamDistillery store;
  CQtParamInstance params;
};

}  // namespace testing_support
