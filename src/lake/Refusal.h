// Why a file was not read as a whole, or a data base not loaded. The operations answer with true or
// false, and reading a file that isn't there answers true; whoever has to tell people asks then:
// CLake::last_refusal() for the file, CQtParamInstance::LastRefusal() for the load.
#pragma once

#include "interfaces/text/Text.h"

namespace kestrin {

struct Refusal {
  enum Reason {
    none,

    // of a file; the last two still give the lines in front of the fault
    missing_file,
    folder,
    no_right,
    unopened,     // for another reason, which the sentence tells
    broken_mark,  // it begins like the UTF-8 mark and goes on in another way
    broken_text,  // it has the mark, and then bytes that are not UTF-8
    broken_medium,

    // of a load
    empty_lake,
    no_version,  // one of the two version lines is missing
    version_too_low,
    version_too_high,
    unknown_parameter,  // of a relative limit, which the sentence names
  };

  Reason reason = none;
  CString sentence;  // English, with its full stop; empty without a reason
  int line = 0;      // of a file that was opened: where it broke off, counted from 1

  explicit operator bool() const { return reason != none; }
};

}  // namespace kestrin
