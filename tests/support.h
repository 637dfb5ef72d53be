// What the tests stand on: GoogleTest and the standard library, files and lakes from bytes, what
// goes wrong with them, the log, and data bases of a test's own.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "inspect/ParameterCheck.h"
#include "inspect/TableCatalogue.h"
#include "interfaces/sea/PrWin.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"
#include "lake/LakeReader.h"

using namespace kestrin;

// --- Files and lakes ---

inline std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A file of its own for each test, gone at the end of the scope.
class ScratchFile {
 public:
  explicit ScratchFile(std::string_view bytes = {}) {
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~ScratchFile() { std::filesystem::remove(path_); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  CString name() const { return Text::FromUtf8(path_); }
  const std::string& path() const { return path_; }
  std::string bytes() const { return BytesOf(path_); }

 private:
  static std::string NextPath() {
    static int made = 0;
    return testing::TempDir() + "l\xC3\xA4ke_" + std::to_string(getpid()) + "_" +
           std::to_string(++made);
  }
  std::string path_ = NextPath();
};

inline CLake FromBytes(std::string_view bytes) { return CLake(ScratchFile(bytes).name()); }

inline std::string ToBytes(const CLake& lake) {
  const ScratchFile file;
  return lake.write(file.name()) ? file.bytes() : "not written";
}

// A source of a lake that gives its bytes in pieces, and ends in one of three ways.
struct Medium {
  enum class End { of_file, reports_failure, throws };
  std::size_t piece;
  End end;
  std::string_view rest = {};

  std::optional<std::size_t> operator()(std::span<char> block) {
    if (rest.empty() && end == End::throws) throw std::runtime_error("medium");
    if (rest.empty() && end == End::reports_failure) return std::nullopt;
    const std::size_t count = rest.copy(block.data(), std::min(piece, block.size()));
    rest.remove_prefix(count);
    return count;
  }
};

// A disk that is full: while it lives, no file of this process grows beyond some bytes.
class FullDisk {
 public:
  explicit FullDisk(rlim_t room) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small = {room, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

// --- The log and the seas ---

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

// --- Data bases ---

// A section of a file; each row ends with a line feed.
inline std::string Section(const std::string& name, const std::string& rows) {
  return "<" + name + ">: {\n" + rows + "}\n";
}

inline const std::string version =
    "<DbDesign.CacheVersion>: 215\n<DbDesign.CacheMinorVersion>: 1\n";

// Fills the candidate lake with a file of this text (UTF-8, without the mark).
inline void FillCandidateLake(std::string_view text) {
  CParameterLake::Lake() = FromBytes("\xEF\xBB\xBF" + std::string(text));
}

// A data base that is not the process's, and what is logged meanwhile. The candidate lake is empty
// behind a load.
struct TestStore {
  TestStore() : params(&store) {}
  explicit TestStore(std::string_view sections) : TestStore() { Load(sections); }

  // Loads these sections behind the version lines.
  bool Load(std::string_view sections) { return LoadText(version + std::string(sections)); }

  bool LoadText(std::string_view text) {
    FillCandidateLake(text);
    return LoadCandidate();
  }

  bool LoadSample() {
    CParameterLake::Lake() = CLake(Text::FromUtf8(KESTRIN_SAMPLES "/gearbox.par"));
    return LoadCandidate();
  }

  Log log;
  CQtParamDistillery store;
  CQtParamInstance params;

 private:
  bool LoadCandidate() {
    const bool loaded = params.ReadTablesFromCandidateLake();
    CParameterLake::Lake().clear();
    return loaded;
  }
};
