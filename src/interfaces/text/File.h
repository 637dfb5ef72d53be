// Files by their wide names. A name is UTF-8 for the system; a folder is no file, and no name holds
// a zero, behind which the system would not look.
#pragma once

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

namespace kestrin {

// The file's name and what the system said, as one sentence in UTF-8.
class KESTRIN_API CFileException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using FilePointer = std::unique_ptr<std::FILE, CloseFile>;

// Opens a file in a mode of std::fopen. Null, with the cause in errno, if that fails.
KESTRIN_API FilePointer OpenFile(const CString& name, const char* mode);

// What the system says of an errno, in English whatever the host's locale.
KESTRIN_API std::string ReasonOf(int error);

// Why a file was not opened, behind its name: "doesn't exist", "is a folder".
KESTRIN_API std::string WhyUnopened(int error);

// All bytes of a file. Throws CFileException if it can't be opened or not be read to its end.
KESTRIN_API std::string ReadFile(const CString& name);

// Makes these bytes the content of a file, whole or not at all: they are written beside it, and
// take its place when they are on the disk. Throws CFileException if that failed; the file is then
// as it was, or not there. What is no regular file is refused; behind a symbolic link the file that
// it leads to is replaced. The rights of the file stay. A process that is killed meanwhile may
// leave a file that ends in ".new".
KESTRIN_API void ReplaceFile(const CString& name, std::string_view bytes);

}  // namespace kestrin

// A file of bytes: what binary tables are written to and read from. Failures to open and to write
// are exceptions, a short read is not. One thread at a time.
class KESTRIN_API CFile {
 public:
  enum Mode { modeRead, modeWrite };  // modeWrite makes the file or empties it

  // Throws CFileException if the file can't be opened.
  CFile(const CString& name, Mode mode);

  // Closes without a word; call Close to hear of a full disk.
  ~CFile() = default;

  // The number of bytes that there were, at most count: fewer at the end of the file and when the
  // medium fails.
  unsigned Read(void* buffer, unsigned count);

  // Throws CFileException unless all bytes were taken. Bytes may wait in memory until Close.
  void Write(const void* buffer, unsigned count);

  // Writes what waits. Throws CFileException if that fails, on a full disk for instance. Closing
  // again does nothing.
  void Close();

 private:
  CString name_;
  kestrin::FilePointer file_;
};
