#include "interfaces/text/File.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

using namespace kestrin;

namespace {

[[noreturn]] void Fail(const CString& name, const char* what, const std::string& reason) {
  throw CFileException("The file '" + Text::ToUtf8(name) + "' " + what + ": " + reason + ".");
}
[[noreturn]] void Fail(const CString& name, const char* what) { Fail(name, what, ReasonOf(errno)); }

// A new file beside another one. It is removed unless it is kept.
struct Neighbour {
  explicit Neighbour(const std::string& target) {
    // The name is unique among the threads of all processes on this machine; should another
    // machine or a process of the past have left one like it, the next number is taken.
    static std::atomic<unsigned> number = 0;
    do {
      path = target + "." + std::to_string(getpid()) + "-" + std::to_string(number++) + ".new";
      file.reset(std::fopen(path.c_str(), "wbxe"));
    } while (!file && errno == EEXIST);
  }
  Neighbour(const Neighbour&) = delete;
  Neighbour& operator=(const Neighbour&) = delete;
  ~Neighbour() {
    if (!path.empty()) std::remove(path.c_str());
  }

  std::string path;
  FilePointer file;
};

}  // namespace

FilePointer kestrin::OpenFile(const CString& name, const char* mode) {
  const std::string utf8 = Text::ToUtf8(name);
  std::error_code ignored;
  const bool has_zero = utf8.find('\0') != std::string::npos;
  if (has_zero || std::filesystem::is_directory(utf8, ignored)) {
    errno = has_zero ? EINVAL : EISDIR;
    return nullptr;
  }
  return FilePointer(std::fopen(utf8.c_str(), mode));
}

std::string kestrin::ReasonOf(int error) {
  const char* const text = strerrordesc_np(error);
  return text != nullptr ? text : "error " + std::to_string(error);
}

std::string kestrin::WhyUnopened(int error) {
  if (error == ENOENT) return "doesn't exist";
  if (error == EISDIR) return "is a folder";
  if (error == EACCES) return "may not be read";
  return "can't be opened: " + ReasonOf(error);
}

std::string kestrin::ReadFile(const CString& name) {
  const FilePointer file = OpenFile(name, "rbe");
  if (!file) {
    throw CFileException("The file '" + Text::ToUtf8(name) + "' " + WhyUnopened(errno) + ".");
  }
  std::string bytes;
  std::array<char, 16384> piece;
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get())) {
    bytes.append(piece.data(), count);
  }
  if (std::ferror(file.get()) != 0) Fail(name, "can't be read");
  return bytes;
}

void kestrin::ReplaceFile(const CString& name, std::string_view bytes) {
  constexpr const char* what = "can't be replaced";
  std::string target = Text::ToUtf8(name);
  if (target.find('\0') != std::string::npos) Fail(name, what, ReasonOf(EINVAL));
  std::error_code is_new;
  const std::filesystem::path behind_links = std::filesystem::canonical(target, is_new);
  if (!is_new) target = behind_links.string();
  struct stat old {};
  const bool is_there = stat(target.c_str(), &old) == 0;
  if (is_there && !S_ISREG(old.st_mode)) Fail(name, what, "it is no regular file");

  Neighbour next(target);
  if (!next.file) Fail(name, what);
  const int handle = fileno(next.file.get());
  if (is_there) static_cast<void>(fchmod(handle, old.st_mode & 07777U));  // if it may be kept
  const bool is_whole =
      std::fwrite(bytes.data(), 1, bytes.size(), next.file.get()) == bytes.size() &&
      std::fflush(next.file.get()) == 0 && fsync(handle) == 0 &&
      std::fclose(next.file.release()) == 0;
  if (!is_whole || std::rename(next.path.c_str(), target.c_str()) != 0) Fail(name, what);
  next.path.clear();
}

CFile::CFile(const CString& name, Mode mode)
    : name_(name), file_(OpenFile(name, mode == modeRead ? "rbe" : "wbe")) {
  if (!file_) Fail(name_, "can't be opened");
}

unsigned CFile::Read(void* buffer, unsigned count) {
  return file_ ? static_cast<unsigned>(std::fread(buffer, 1, count, file_.get())) : 0;
}

void CFile::Write(const void* buffer, unsigned count) {
  if (!file_) Fail(name_, "is closed", ReasonOf(EBADF));
  if (std::fwrite(buffer, 1, count, file_.get()) != count) Fail(name_, "can't be written");
}

void CFile::Close() {
  if (!file_) return;
  if (std::fclose(file_.release()) != 0) Fail(name_, "can't be written");
}
