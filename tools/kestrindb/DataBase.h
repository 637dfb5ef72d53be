// A parameter file read and loaded for a command, and how a command ends that can't answer.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "Answer.h"

namespace kestrindb {

enum Status : int {
  fine = 0,
  data_bad = 1,       // the data base was refused, or lines of it were bad
  file_unusable = 2,  // the file is missing, a folder or unreadable
  cancelled = 3,      // the user wanted no answer
  no_terminal = 4,    // there is none, or none that can show a screen
};

// Ends a command: one clear sentence for standard error, or none, and the exit status.
class Failure : public std::runtime_error {
 public:
  Failure(Status exit_status, const std::string& sentence)
      : std::runtime_error(sentence), status(exit_status) {}
  Status status;
};

// Takes what the library logs while it lives.
class LogSink {
 public:
  explicit LogSink(PrWin::Sink sink) : before_(PrWin::SetSink(std::move(sink))) {}
  LogSink(const LogSink&) = delete;
  LogSink& operator=(const LogSink&) = delete;
  ~LogSink() { PrWin::SetSink(std::move(before_)); }

 private:
  PrWin::Sink before_;
};

// The bytes of a file, which is opened once and may be a pipe; "-" stands for standard input.
// Throws Failure if it can't be read, or is a device that may never end.
std::string ReadInput(const std::string& file_name);

// What messages call it: "<stdin>" for "-".
std::string InputName(const std::string& file_name);

// Reads it into the candidate lake and gives its bytes. Throws Failure if it can't be used.
std::string ReadCandidateLake(const std::string& file_name);

// One line on standard error if the candidate lake ends where its file was no UTF-8 any more.
void TellIfCut();

// The file read into the candidate lake, the lake loaded.
class DataBase {
 public:
  // Throws Failure if the file can't be used. A data base that was refused is no failure here.
  explicit DataBase(const std::string& file_name);

  std::string bytes;  // of the file
  CQtParamInstance params;
  Json log = Json::array();  // what the load logged; it was also printed
  double reading = 0;        // seconds
  double loading = 0;

  bool IsAccepted() const { return !params.LastRefusal(); }
  Status LoadStatus() const { return IsAccepted() && log.empty() ? fine : data_bad; }

  // Throws Failure if the data base was refused.
  void RequireAccepted() const;
};

}  // namespace kestrindb
