// A file of bytes, on top of the standard library: what binary tables are written to and read from.
// Failures to open and to write are exceptions, a short read is not. One thread at a time.
#pragma once

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

namespace kestrin {

// The file's name and what the system said, as one sentence in UTF-8.
class KESTRIN_API CFileException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kestrin

class KESTRIN_API CFile {
 public:
  enum Mode { modeRead, modeWrite };  // modeWrite makes the file or empties it

  // Throws CFileException if the file can't be opened; a folder can't.
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
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  [[noreturn]] void Fail(const char* what) const;

  CString name_;
  std::unique_ptr<std::FILE, Closer> file_;
};
