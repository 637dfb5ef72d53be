// The seas: the suite's resource trees, as far as this library has to do with them.
//
// A sea holds lists of text lines and booleans, each under a name. It lives in memory; a host that
// wants to keep one saves it to a text file and loads it at the next start. The application sea
// holds tables that the user edits, the messages sea what he wants to be shown.
//
// The file is UTF-8 and made to be read, compared and mended by a person:
//
//     sea 2                       the first line: what this is, and the version of the format
//     list <TAutoModeParam>       a list; its lines follow, each behind a hyphen
//     - 12 0 5 -1 1.5
//     - 13 0 5 -1 say "when"
//     list <TEmpty>               a list without lines is a list
//     true ShowIdsInDialogs       a boolean, true or false
//     end                         the last line: a file without it was cut off
//
// Blank lines and lines that start with a semicolon are skipped, white space at both ends of a line
// and behind its first word has no meaning, lines may end with CR LF, a UTF-8 mark may stand in
// front. A character can be written as \XXXX, the four hexadecimal digits of its UTF-16 code unit;
// so are backslashes, control characters, white space at the ends of a text, and surrogates without
// a partner. Every text comes back as it was, with one exception: an element above 0xFFFF is no
// text of this system and is saved as U+FFFD.
//
// Threads: a sea is a container. Constant operations may run side by side, any other runs alone.
// The operations of CSeaBase may be called from any thread.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

namespace lookup {

// How a typed lookup ended.
enum class result {
  found,    // read, or stored
  missing,  // nothing of that name; the caller's value is as it was
};

inline constexpr int access_store = 2;

}  // namespace lookup

// One line of a list. It stays where it is until the lines of its list are removed, or the sea is
// loaded or dies. A null text is an empty one.
class KESTRIN_API CResourceEntry {
 public:
  void GetLine(CString& text) const { text = text_; }
  void SetSeaLine(const wchar_t* text);

 private:
  friend class CResourceSea;
  std::wstring text_;
};

class KESTRIN_API CResourceSea {
 public:
  CResourceSea() = default;
  CResourceSea(const CResourceSea&) = delete;
  CResourceSea& operator=(const CResourceSea&) = delete;

  // Whether there is a list of that name, also an empty one.
  bool IsListEntry(const wchar_t* name) const;

  // The boolean of that name, or the default if there is none. The number has no meaning here.
  bool LookupGetBool(const wchar_t* key, unsigned int, bool default_value) const;

  // Stores value under the key with the access code lookup::access_store, and reads it with any
  // other one.
  lookup::result LookupBool(int access, const wchar_t* key, bool& value, unsigned int);

  // Replaces the content of the sea by that of the file. False if the file can't be read whole or
  // has a fault anywhere; the sea is then as it was, and the log says which line and why. Views
  // that are open on the sea keep the lists of before.
  bool Load(const std::wstring& file_name);

  // Replaces the file, whole or not at all, as kestrin::ReplaceFile does. False if that failed: the
  // log says why.
  bool Save(const std::wstring& file_name) const;

 private:
  friend class CResourceList;
  struct Reader;

  using Lines = std::deque<CResourceEntry>;  // keeps its elements in place when it grows
  struct Content {
    std::map<std::wstring, std::shared_ptr<Lines>, std::less<>> lists;
    std::map<std::wstring, bool, std::less<>> bools;

    // The lines of a list, which is made if it isn't there.
    const std::shared_ptr<Lines>& List(std::wstring_view name);
  };

  Content content_;
};

// A view on one list, with a current line: at first the first one. Views are made on the stack;
// several may be open on one list.
class KESTRIN_API CResourceList {
 public:
  // For reading. A list that is not there has no lines, and none can be added.
  CResourceList(const CResourceSea* sea, const wchar_t* name);
  // For writing. A list that is not there is made. What is written to a null sea is lost.
  CResourceList(CResourceSea* sea, const wchar_t* name);

  // Both return IsValid.
  bool GotoHead();
  bool GotoNext();

  // Whether there is a current line: false on an empty list, and behind the last line.
  bool IsValid() const;

  // The current line; null if there is none.
  CResourceEntry* GetCurrentLine() const;

  // A new empty line at the end; null in a view for reading. The current line stays the same one;
  // a view that stood behind the last line now stands on the new one.
  CResourceEntry* AddLineTail();

  // Nothing in a view for reading.
  void RemoveAll();

 private:
  std::shared_ptr<CResourceSea::Lines> lines_;  // shared with the sea, so that a load leaves it
  std::size_t current_ = 0;
  bool writable_;
};

// The seas of the process. Both exist from the start, empty, and live to its end.
class KESTRIN_API CSeaBase {
 public:
  // Null only after SetApplicationSea(nullptr): there is no application sea then.
  static CResourceSea* ApplicationSea();
  // Never null.
  static CResourceSea* MessagesSea();

  // Set a sea of the host and return the one before. The host keeps the sea, and keeps it alive
  // for as long as it is set and any object of the library has been made under it. A null messages
  // sea stands for the one from the start.
  static CResourceSea* SetApplicationSea(CResourceSea* sea);
  static CResourceSea* SetMessagesSea(CResourceSea* sea);
};
