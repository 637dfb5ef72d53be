// A load for the sake of what it finds.
#pragma once

class CLake;
class CQtParamDistillery;

namespace kestrin {

// Loads any lake into a data base that is empty. The process doesn't notice: its candidate lake,
// its seas and TimeSignalId stay out of it. Nor does the version count, since what is wrong besides
// is worth knowing too.
struct LoadForInspection {
  static void Run(CQtParamDistillery& data, const CLake& lake);
};

}  // namespace kestrin
