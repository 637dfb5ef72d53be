// Seas: any bytes are loaded; a sea that can't be loaded stays as it was. Then the sea is changed,
// asked and saved, and gives the same bytes when it is loaded and saved again.

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "Fuzz.h"
#include "interfaces/ResourceSea.h"
#include "interfaces/Text.h"

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

std::string Saved(const CResourceSea& sea, const std::string& file) {
  Require(sea.Save(Text::FromUtf8(file)), "a sea can be saved");
  std::ifstream saved(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(saved), {}};
}

void RequireRoundTrip(const CResourceSea& sea) {
  static const Folder folder;
  const std::string bytes = Saved(sea, folder.File());
  CResourceSea again;
  Require(again.Load(Text::FromUtf8(folder.File())), "what was saved can be loaded");
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
  RequireRoundTrip(sea);
}

}  // namespace fuzz
