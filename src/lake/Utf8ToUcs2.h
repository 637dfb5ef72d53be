// The conversion facet between UTF-8 in files and UTF-16 code units in memory.
//
// With it a host's wide file streams read and write as a lake does: imbue a stream with a locale
// that holds it. On writing, the mark EF BB BF goes out in
// front of the first character; on reading, a mark is a character as any other.
//
// More is accepted than strict UTF-8: overlong forms, and surrogates as characters. What it
// refuses, by `error` with the input standing at the refused element: on reading a stray or missing
// continuation byte and a value beyond U+10FFFF; on writing a high surrogate that no low one
// follows, and an element above 0xFFFF.
#pragma once

#include <cstddef>
#include <cwchar>
#include <locale>

namespace lake_encoding {

class utf8toucs2 : public std::codecvt<wchar_t, char, std::mbstate_t> {
 public:
  explicit utf8toucs2(std::size_t refs = 0) : codecvt(refs) {}
  ~utf8toucs2() override = default;

 protected:
  result do_in(state_type& state, const char* from, const char* from_end, const char*& from_next,
               wchar_t* to, wchar_t* to_end, wchar_t*& to_next) const override;
  result do_out(state_type& state, const wchar_t* from, const wchar_t* from_end,
                const wchar_t*& from_next, char* to, char* to_end, char*& to_next) const override;
  result do_unshift(state_type& state, char* to, char* to_end, char*& to_next) const override;
  int do_length(state_type& state, const char* from, const char* from_end,
                std::size_t max) const override;
  int do_encoding() const noexcept override { return 0; }
  int do_max_length() const noexcept override { return 7; }  // the mark and one character
  bool do_always_noconv() const noexcept override { return false; }
};

}  // namespace lake_encoding
