// Both directions go unit by unit.

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

}  // namespace

// The last byte of a sequence that gives two units is taken only together with the second one: a
// stream asks for more only while bytes are left, and would never fetch a unit that waits alone.
utf8toucs2::result utf8toucs2::do_in(state_type& state, const char* from, const char* from_end,
                                     const char*& from_next, wchar_t* to, wchar_t* to_end,
                                     wchar_t*& to_next) const {
  Memory memory = Recall(state);
  result outcome = ok;
  while (from != from_end) {
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
