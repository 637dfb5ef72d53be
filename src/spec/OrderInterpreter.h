// Order definitions: the short texts with which a test engineer says where on a spectrum's axis
// something lies, such as "H1-O0.5;H1+O0.5", half an order to each side of a first harmonic.
//
// A text becomes a row of positions. A position is a plain sum of terms, kept apart by kind, since
// it turns into a number only when the speeds of a test step are known. Two positions bound one
// spectrum interval.
//
//     definition  =  position { ";" position } [ ";" ]
//     position    =  { term }
//     term        =  [ sign ] letter ( number | "x" )        letter: F O M L H
#pragma once

#include <array>
#include <cstddef>
#include <tuple>
#include <vector>

#include "interfaces/Export.h"
#include "keys/IndexRecords.h"

// One spectrum interval: a lower and an upper position.
class KESTRIN_API QVSpecIntervalEntry : public QValueBase {
 public:
  // Which kinds of term are present; two flags, so that values can be joined by |.
  enum domain_t {
    domain_none = 0,
    domain_frequency = 1,  // an absolute term
    domain_order = 2,      // a term that grows with the speed
    domain_mixed = 3,
  };

  // One position. A term that the text doesn't mention is 0 and contributes nothing.
  class KESTRIN_API Definition {
   public:
    float frequency() const { return frequency_; }  // F, in the unit of the spectrum's axis
    float& frequency() { return frequency_; }
    float order() const { return order_; }  // O, in orders of the speed source
    float& order() { return order_; }
    float harmonic() const { return harmonic_; }  // H, in base orders of the assembly
    float& harmonic() { return harmonic_; }
    float modulation() const { return modulation_; }  // M, in orders of the assembly
    float& modulation() { return modulation_; }
    int lines() const { return lines_; }  // L, in whole spectral lines
    int& lines() { return lines_; }
    domain_t domain() const { return domain_; }
    domain_t& domain() { return domain_; }

    void clear() { *this = Definition(); }

    // What a dump shows.
    auto tuple() const { return std::tie(frequency_, order_, harmonic_, modulation_, lines_); }

    friend bool operator==(const Definition&, const Definition&) = default;

   private:
    float frequency_ = 0.0F;
    float order_ = 0.0F;
    float harmonic_ = 0.0F;
    float modulation_ = 0.0F;
    int lines_ = 0;
    domain_t domain_ = domain_none;
  };

  QVSpecIntervalEntry() = default;
  QVSpecIntervalEntry(const Definition& lower, const Definition& upper) : bounds_{lower, upper} {}

  const Definition& lower() const { return bounds_[0]; }
  Definition& lower() { return bounds_[0]; }
  const Definition& upper() const { return bounds_[1]; }
  Definition& upper() { return bounds_[1]; }

  // Mixed too when one bound is a frequency and the other one an order.
  domain_t domain() const {
    return lower().domain() == upper().domain() ? lower().domain() : domain_mixed;
  }

  auto tuple() const { return std::tuple_cat(lower().tuple(), upper().tuple()); }

 private:
  std::array<Definition, 2> bounds_;
};

namespace OrderInterpreter {

// Why a definition was refused.
enum class Reason {
  none,                       // it wasn't
  number_missing,             // a letter without a number or repeat mark behind it
  sign_missing,               // a letter inside a position without a sign in front of it
  text_behind_term,           // a term that goes on where it should end
  modulation_with_frequency,  // F and M in one position
  harmonic_with_frequency,    // F and H in one position
  position_behind_repeat,     // a position without "Hx" behind one with it
};

struct SyntaxError {
  Reason reason = Reason::none;
  unsigned position = 0;   // index of the faulty position, from 0
  wchar_t letter = L'\0';  // letter of the faulty term; 0 if the position as a whole is at fault
  // The character to point at, counted from 0 in the definition as given, blanks included; always
  // inside the text.
  std::size_t offset = 0;
};

struct Interpretation {
  unsigned count = 0;  // positions written; 0 on an error
  SyntaxError error;   // error.reason is Reason::none on success
};

// How many intervals so many positions bound: pairs do, and a single one is its own partner; of an
// odd number there are none.
constexpr unsigned IntervalCount(unsigned positions) {
  if (positions == 1) return 1;
  return positions % 2 == 0 ? positions / 2 : 0;
}

// Characters of a definition as given, counted from 0, blanks included.
struct Passage {
  std::size_t offset;
  std::size_t length;
};

// What a definition holds beyond what is read of it.
struct PassedOver {
  // Within the positions that were read: letters that have no meaning, such as those in lower case,
  // all but the first term of a letter, and what else stands between the terms.
  std::vector<Passage> unread;
  unsigned dropped = 0;  // positions behind them that didn't fit
};

// Both operations read a definition, zero ended or null, into the first elements of positions, an
// array of at least max_positions elements, and neither ever writes behind those. Positions that
// don't fit are dropped unread. Repeat positions ("Hx") fill the array up with whole copies of
// their block. A null or empty text, or one of blanks only, gives 0 positions and is no error. On
// an error the count is 0 and the array's content is undefined. Both may be called from any number
// of threads, for different arrays.

// Gives the number of positions written. An error is logged, without its reason, and gives 0.
KESTRIN_API unsigned GetSpecPositions(const wchar_t* definition,
                                      QVSpecIntervalEntry::Definition* positions,
                                      unsigned max_positions);

// The same without a log line, and with the place and the reason of an error.
KESTRIN_API Interpretation Interpret(const wchar_t* definition,
                                     QVSpecIntervalEntry::Definition* positions,
                                     unsigned max_positions);

// The same for what such a reading passes over; nothing for a text that is no definition.
KESTRIN_API PassedOver FindPassedOver(const wchar_t* definition, unsigned max_positions);

// A reason as a short English sentence part, as in "no number behind the letter". Never null; empty
// for Reason::none.
KESTRIN_API const wchar_t* ReasonText(Reason reason);

}  // namespace OrderInterpreter
