#include "interfaces/text/File.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

using namespace kestrin;

namespace {

// A name with a zero in it would end there for the system, and be that of another file.
std::FILE* Open(const CString& name, const char* mode) {
  if (name.find(L'\0') == CString::npos) return std::fopen(Text::ToUtf8(name).c_str(), mode);
  errno = EINVAL;
  return nullptr;
}

// What the system says of a failure, in English whatever the host's locale.
std::string Reason(int error) {
  const char* const text = strerrordesc_np(error);
  return text != nullptr ? text : "error " + std::to_string(error);
}

}  // namespace

CFile::CFile(const CString& name, Mode mode)
    : name_(name), file_(Open(name, mode == modeRead ? "rb" : "wb")) {
  if (!file_) Fail("can't be opened");
  struct stat status {};
  if (fstat(fileno(file_.get()), &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    Fail("can't be opened");
  }
}

unsigned CFile::Read(void* buffer, unsigned count) {
  return file_ ? static_cast<unsigned>(std::fread(buffer, 1, count, file_.get())) : 0;
}

void CFile::Write(const void* buffer, unsigned count) {
  if (!file_) {
    errno = EBADF;
    Fail("is closed");
  }
  if (std::fwrite(buffer, 1, count, file_.get()) != count) Fail("can't be written");
}

void CFile::Close() {
  if (!file_) return;
  if (std::fclose(file_.release()) != 0) Fail("can't be written");
}

void CFile::Fail(const char* what) const {
  throw CFileException("The file '" + Text::ToUtf8(name_) + "' " + what + ": " + Reason(errno) +
                       ".");
}
