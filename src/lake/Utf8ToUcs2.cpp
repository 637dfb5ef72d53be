// Both directions go unit by unit, with a short cut for runs of ASCII, which most of a parameter
// file is.

#include "lake/Utf8ToUcs2.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "interfaces/text/Utf.h"

using namespace kestrin;

namespace lake_encoding {
namespace {

// What lasts from one call to the next, kept in the stream's own state object, zero at its start.
struct Memory {
  std::uint16_t pending;  // the surrogate that waits for its place or partner; 0 if there is none
  std::uint16_t begun;    // 1 once the mark is written
};
static_assert(sizeof(Memory) <= sizeof(std::mbstate_t));

Memory Recall(const std::mbstate_t& state) {
  Memory memory;
  std::memcpy(&memory, &state, sizeof memory);
  return memory;
}

void Store(std::mbstate_t& state, Memory memory) { std::memcpy(&state, &memory, sizeof memory); }

constexpr std::ptrdiff_t run_length = 16;

// Both copy whole runs of ASCII as long as there is input and room, and leave the rest to the
// caller.
void WidenAscii(const char*& from, const char* from_end, wchar_t*& to, const wchar_t* to_end) {
  while (from_end - from >= run_length && to_end - to >= run_length) {
    std::uint64_t words[2];
    std::memcpy(words, from, sizeof words);
    if (((words[0] | words[1]) & 0x8080808080808080U) != 0) return;
    for (int i = 0; i < run_length; ++i) to[i] = static_cast<unsigned char>(from[i]);
    from += run_length;
    to += run_length;
  }
}

void NarrowAscii(const wchar_t*& from, const wchar_t* from_end, char*& to, const char* to_end) {
  while (from_end - from >= run_length && to_end - to >= run_length) {
    char32_t all = 0;
    for (int i = 0; i < run_length; ++i) all |= static_cast<char32_t>(from[i]);
    if (all >= 0x80) return;
    for (int i = 0; i < run_length; ++i) to[i] = static_cast<char>(from[i]);
    from += run_length;
    to += run_length;
  }
}

}  // namespace

// The last byte of a sequence that gives two units is taken only together with the second one: a
// stream asks for more only while bytes are left, and would never fetch a unit that waits alone.
utf8toucs2::result utf8toucs2::do_in(state_type& state, const char* from, const char* from_end,
                                     const char*& from_next, wchar_t* to, wchar_t* to_end,
                                     wchar_t*& to_next) const {
  Memory memory = Recall(state);
  result outcome = ok;
  while (from != from_end) {
    if (memory.pending == 0) WidenAscii(from, from_end, to, to_end);
    if (from == from_end) break;
    if (to == to_end) {
      outcome = partial;
      break;
    }
    if (memory.pending != 0) {
      *to++ = memory.pending;
      memory.pending = 0;
      ++from;
      continue;
    }
    const Utf::Sequence next = Utf::Read(from, from_end);
    if (next.state != Utf::Sequence::whole) {
      outcome = next.state == Utf::Sequence::cut ? partial : error;
      break;
    }
    if (next.code < 0x10000) {
      *to++ = static_cast<wchar_t>(next.code);
      from += next.length;
    } else {
      *to++ = static_cast<wchar_t>(Utf::HighOf(next.code));
      memory.pending = static_cast<std::uint16_t>(Utf::LowOf(next.code));
      from += next.length - 1;
    }
  }
  Store(state, memory);
  from_next = from;
  to_next = to;
  return outcome;
}

utf8toucs2::result utf8toucs2::do_out(state_type& state, const wchar_t* from,
                                      const wchar_t* from_end, const wchar_t*& from_next, char* to,
                                      char* to_end, char*& to_next) const {
  Memory memory = Recall(state);
  result outcome = ok;
  while (from != from_end) {
    if (memory.begun != 0 && memory.pending == 0) NarrowAscii(from, from_end, to, to_end);
    if (from == from_end) break;
    auto code = static_cast<char32_t>(*from);
    if (memory.pending != 0 ? !Utf::IsLow(code) : code > 0xFFFF) {
      outcome = error;
      break;
    }
    if (Utf::IsHigh(code)) {
      memory.pending = static_cast<std::uint16_t>(code);
      ++from;
      continue;
    }
    if (memory.pending != 0) code = Utf::Joined(memory.pending, code);
    if (to_end - to < Utf::LengthOf(code) + (memory.begun != 0 ? 0 : 3)) {
      outcome = partial;
      break;
    }
    if (memory.begun == 0) Utf::Write(0xFEFF, to);
    Utf::Write(code, to);
    memory = {.pending = 0, .begun = 1};
    ++from;
  }
  Store(state, memory);
  from_next = from;
  to_next = to;
  return outcome;
}

utf8toucs2::result utf8toucs2::do_unshift(state_type& state, char* to, char* /*to_end*/,
                                          char*& to_next) const {
  to_next = to;
  return Recall(state).pending != 0 ? error : ok;
}

int utf8toucs2::do_length(state_type& state, const char* from, const char* from_end,
                          std::size_t max) const {
  std::array<wchar_t, 256> scratch;
  const char* next = from;
  while (max > 0) {
    wchar_t* to_next = nullptr;
    const std::size_t room = std::min(max, scratch.size());
    const result outcome =
        do_in(state, next, from_end, next, scratch.data(), scratch.data() + room, to_next);
    max -= static_cast<std::size_t>(to_next - scratch.data());
    if (outcome == error || to_next == scratch.data()) break;
  }
  return static_cast<int>(next - from);
}

}  // namespace lake_encoding
