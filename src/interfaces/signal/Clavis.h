// The key of a measured quantity, in the form that the signal library's callers use.
//
// A key is the address of one result on a test bench: six ids, which name the test step, the
// instrument, the channel, the object, the result parameter and the sensor. -1 in an element is no
// value; where keys are matched it stands for any value.
//
// Keys are plain values without shared state; every function here may be called from any thread.
#pragma once

#include <algorithm>
#include <cassert>

#include "interfaces/Export.h"

namespace Clavis {

// The positions of the elements in a key. Masks over a key are std::bitset<6> on these numbers.
enum qOrder {
  Mode,        // test step
  Instrument,  // instrument
  Channel,     // channel
  Location,    // object: the place on the unit under test
  Parameter,   // result parameter of the instrument
  Sensor,      // sensor
};

inline constexpr int element_count = 6;

// The English word for an element. Form 1 stands in running text, as in "(instrument 12)", form 2
// is the heading of a grid column. An element or a form that doesn't exist gives the empty text;
// the result is never null and lives to process end.
KESTRIN_API const wchar_t* ElementName(qOrder element, unsigned int form);

}  // namespace Clavis

// The plain record of a key: the ids in the order of Clavis::qOrder.
struct SClavis {
  int id[Clavis::element_count] = {-1, -1, -1, -1, -1, -1};

  friend constexpr bool operator==(const SClavis&, const SClavis&) = default;
};

class KESTRIN_API CClavis {
 public:
  // No value in any element.
  constexpr CClavis() = default;

  constexpr explicit CClavis(const SClavis& ids) : base_(ids) {}

  // `ids` shows six ints in the order of Clavis::qOrder, such as the array of a QClavis.
  constexpr explicit CClavis(const int* ids) { std::copy_n(ids, Clavis::element_count, base_.id); }

  constexpr const SClavis& Base() const { return base_; }

  constexpr int Mode() const { return base_.id[Clavis::Mode]; }
  constexpr int Instrument() const { return base_.id[Clavis::Instrument]; }
  constexpr int Channel() const { return base_.id[Clavis::Channel]; }
  constexpr int Location() const { return base_.id[Clavis::Location]; }
  constexpr int Parameter() const { return base_.id[Clavis::Parameter]; }
  constexpr int Sensor() const { return base_.id[Clavis::Sensor]; }

  // The id of the instrument parameter. A parameter id is unique over all instruments, so that this
  // is the Parameter element alone.
  constexpr int InstrParam() const { return Parameter(); }

  // `element` is a value of Clavis::qOrder; others are the caller's fault.
  constexpr int operator[](unsigned int element) const {
    assert(element < Clavis::element_count);
    return base_.id[element];
  }
  constexpr int& operator[](unsigned int element) {
    assert(element < Clavis::element_count);
    return base_.id[element];
  }

  // True when the keys match: every element is equal, or one of the two is -1.
  constexpr bool operator&(const CClavis& other) const {
    for (int i = 0; i < Clavis::element_count; ++i) {
      const int a = base_.id[i];
      const int b = other.base_.id[i];
      if (a != b && a != -1 && b != -1) return false;
    }
    return true;
  }

  // Plain equality: -1 equals -1 alone.
  friend constexpr bool operator==(const CClavis&, const CClavis&) = default;

 private:
  SClavis base_;
};
