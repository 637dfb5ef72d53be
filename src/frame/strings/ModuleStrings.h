// The library's own texts, in the language of its user.
//
// What controls and dialogs show, and the texts of calculation parameters, come out of one string
// table with a number for each text. It exists in eleven languages; their text files, one for
// English and for the system's default language, are compiled in. Which language is used is one
// setting of the process: until a host sets it, it is what the environment says when the first text
// is asked for, in the order LC_ALL, LC_MESSAGES, LANG, of which the first that is not empty
// decides.
//
// Every function here may be called from any thread, also while another sets the language; a text
// then comes in the language before or the one after. Only the environment must not be changed by
// another thread while it is read, that is on the first call.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

// The ids of the string table.
namespace kestrin {

namespace StringId {

struct Range {
  int first;
  int last;
};

inline constexpr int section = 7;  // column headings of the key editor
inline constexpr int value = 8;
inline constexpr int not_assigned = 9;  // a key element without value, in a combo box

// Headings of check lists: `all_of_element` plus the number of the key element; 6 is reserved.
inline constexpr int all_of_element = 11;

inline constexpr int calc_param = 99;  // the word for a calculation parameter without a text
inline constexpr Range calc_params{100, 142};  // first + number of the calculation parameter

// The values that a calculation parameter can take, as its list shows them: first + value.
inline constexpr Range calculation{200, 206};
inline constexpr Range calculation_special{250, 253};
inline constexpr Range shifting_evaluation{290, 292};  // 293 and 294 have texts too
inline constexpr Range interpretation{300, 308};
inline constexpr Range bin_op_calc_mode{400, 404};
inline constexpr Range area_interpretation{500, 504};  // 505 to 511 have texts too

}  // namespace StringId

struct Language {
  int id;                  // the platform's number: 1031, also with another region, such as 3079
  std::string_view tag;    // "de", "zh-CN"
  std::wstring_view name;  // as its speakers call it
};

// All languages, in ascending order of their ids. 2048, tag "default", stands for the default of
// the system and has the English texts.
KESTRIN_API std::span<const Language> Languages();

// The language by its number, or by a tag or a POSIX locale name: "de", "de-AT", "de_AT.UTF-8". A
// region that the library doesn't know gives its language. Null if the language is unknown.
KESTRIN_API const Language* FindLanguage(int id);
KESTRIN_API const Language* FindLanguage(std::string_view tag);

KESTRIN_API const Language& UserLanguage();

// Sets the user's language for the whole process, as FindLanguage finds it; an unknown one is
// English. The result is the language that is set.
KESTRIN_API const Language& SetUserLanguage(int id);
KESTRIN_API const Language& SetUserLanguage(std::string_view tag);

}  // namespace kestrin

// A text of the string table in the user's language; empty if there is none of that id.
KESTRIN_API CString LoadModuleString(int id);

namespace kestrin {

// The same, but tells an id without a text from an empty text.
KESTRIN_API std::optional<CString> FindModuleString(int id);
KESTRIN_API std::optional<CString> FindModuleString(int id, const Language& language);

// Which module's texts are meant: a host's modules carry none that this library can read.
enum class ModuleHandle { none, lKestrinDb };

}  // namespace kestrin

// A view on the string table of one module.
class KESTRIN_API CLibMgr {
 public:
  explicit CLibMgr(kestrin::ModuleHandle module_handle) : module_(module_handle) {}

  // As LoadModuleString; empty for every id if the view is on no module.
  CString LoadStringW(unsigned int id) const;

 private:
  kestrin::ModuleHandle module_;
};
