// Seas: any bytes are loaded; a sea that can't be loaded stays as it was. Then the sea is changed,
// asked and saved, and what is loaded from that holds the same lists, lines and booleans, and gives
// the same bytes when it is saved again.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "Fuzz.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/text/Text.h"

using namespace kestrin;

namespace fuzz {
namespace {

namespace fs = std::filesystem;

// A save makes a new file beside the old one, which takes a folder. That of shared memory costs no
// disk.
class Folder {
 public:
  Folder() {
    std::error_code none;
    const fs::path memory = "/dev/shm";
    path_ = (fs::is_directory(memory, none) ? memory : fs::temp_directory_path()) /
            "kestrin-fuzz-XXXXXX";
    if (!mkdtemp(path_.data())) throw std::system_error(errno, std::generic_category(), path_);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  std::string File() const { return path_ + "/sea"; }

 private:
  std::string path_;
};

// The text with its escapes; sound ones, since it has been loaded.
CString Unescaped(std::wstring_view text) {
  CString plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != L'\\') {
      plain += text[i];
      continue;
    }
    plain += static_cast<wchar_t>(std::stoi(CString(text.substr(i + 1, 4)), nullptr, 16));
    i += 4;
  }
  return plain;
}

// The names that a file gives to lists and to booleans, since a sea tells none.
struct Names {
  std::set<CString> lists;
  std::set<CString> bools;

  void Add(Bytes file) {
    const std::wstring text = Text::FromUtf8(AsText(file));
    for (std::wstring_view rest = text; !rest.empty();) {
      const std::wstring_view line = Text::Trim(rest.substr(0, rest.find(L'\n')));
      rest.remove_prefix(std::min(rest.find(L'\n'), rest.size() - 1) + 1);
      const auto end = std::find_if(line.begin(), line.end(), Text::IsSpace);
      const std::wstring_view word = line.substr(0, static_cast<std::size_t>(end - line.begin()));
      const std::wstring_view name = Text::Trim(line.substr(word.size()));
      if (word == L"list") lists.insert(Unescaped(name));
      if (word == L"true" || word == L"false") bools.insert(Unescaped(name));
    }
  }
};

struct Content {
  std::map<CString, std::vector<CString>> lists;
  std::map<CString, bool> bools;

  friend bool operator==(const Content&, const Content&) = default;
};

Content ContentOf(const CResourceSea& sea, const Names& names) {
  Content content;
  for (const CString& name : names.lists) {
    Require(sea.IsListEntry(name.c_str()), "a list bears the name that the file gives it");
    std::vector<CString>& lines = content.lists[name];
    CResourceList list(&sea, name.c_str());
    for (list.GotoHead(); list.IsValid(); list.GotoNext()) {
      list.GetCurrentLine()->GetLine(lines.emplace_back());
    }
  }
  for (const CString& name : names.bools) {
    const bool value = sea.LookupGetBool(name.c_str(), 0, false);
    Require(value == sea.LookupGetBool(name.c_str(), 0, true), "a boolean bears its name");
    content.bools[name] = value;
  }
  return content;
}

std::string Saved(const CResourceSea& sea, const std::string& file) {
  Require(sea.Save(Text::FromUtf8(file)), "a sea can be saved");
  std::ifstream saved(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(saved), {}};
}

void RequireRoundTrip(const CResourceSea& sea, const Names& names) {
  static const Folder folder;
  const std::string bytes = Saved(sea, folder.File());
  CResourceSea again;
  Require(again.Load(Text::FromUtf8(folder.File())), "what was saved can be loaded");
  Require(ContentOf(again, names) == ContentOf(sea, names), "what was saved is what is loaded");
  Require(Saved(again, folder.File()) == bytes, "what is saved twice is the same bytes");
}

}  // namespace

void Sea(Bytes bytes) {
  const QuietLog log;
  CResourceSea sea;
  CResourceList before(&sea, L"before");
  before.AddLineTail()->SetSeaLine(L"1");

  const MemoryFile file(bytes);
  const bool loaded = sea.Load(file.name());
  Require(loaded == (log.logged().lines == 0), "a refusal is logged");
  Require(loaded || sea.IsListEntry(L"before"), "a refusal leaves the sea as it was");

  CString line;
  CResourceList list(&sea, L"<TAutoModeParam>");
  for (list.GotoHead(); list.IsValid(); list.GotoNext()) list.GetCurrentLine()->GetLine(line);
  list.AddLineTail()->SetSeaLine(line.c_str());
  Require(list.IsValid(), "a list shows the line that was added");
  Require(before.GotoHead(), "a view outlives the content that it shows");

  Names names;
  if (loaded) {
    names.Add(bytes);
  } else {
    names.lists.insert(L"before");
  }
  names.lists.insert(L"<TAutoModeParam>");
  RequireRoundTrip(sea, names);
}

}  // namespace fuzz
