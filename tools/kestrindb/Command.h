// What the commands of kestrindb share: exit statuses, the data base at hand, output as text or as
// JSON. A command stands in a file of its own, adds itself to the command line in Add...() and
// gives its exit status through CommandLine::status.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "lKestrinDb.h"

namespace kestrindb {

using Json = nlohmann::ordered_json;

enum Status : int {
  fine = 0,
  data_bad = 1,       // the data base was refused, or lines of it were bad
  file_unusable = 2,  // the file is missing, a folder or unreadable
  cancelled = 3,      // the user wanted no answer
  no_terminal = 4,    // there is none, or none that can show a screen
};

// Ends a command: one clear sentence for standard error, and the exit status.
class Failure : public std::runtime_error {
 public:
  Failure(Status exit_status, const std::string& sentence)
      : std::runtime_error(sentence), status(exit_status) {}
  Status status;
};

// A line of the log as a load put it out.
struct LogLine {
  int category;
  int style;
  std::string text;
};

// Reads a file into the candidate lake. Throws Failure if it can't be used.
void ReadLake(const std::string& file_name);

// A loaded data base: the file read into the candidate lake, the lake loaded.
class DataBase {
 public:
  // Throws Failure if the file can't be used. A data base that was refused is no failure here.
  explicit DataBase(const std::string& file_name);

  CQtParamInstance params;
  bool accepted = false;
  std::string reason;        // why not, as the end of a sentence
  std::vector<LogLine> log;  // what the load logged; it was also printed
  double reading = 0;        // seconds
  double loading = 0;

  Status LoadStatus() const { return accepted && log.empty() ? fine : data_bad; }

  // Throws Failure if the data base was refused.
  void RequireAccepted() const;

  // Throws Failure if it doesn't hold the test step, a virtual one by its base.
  void RequireMode(int mode) const;

 private:
  std::string file_name_;
};

// The options and the state of one run.
struct CommandLine {
  CLI::App app{"Loads and asks lKestrinDb parameter files.", "kestrindb"};
  int status = fine;

  CommandLine();

  // Adds a command with the option --json that all of them have; `run` is called if it is chosen.
  // The options of the program, such as --lang, may stand behind it too.
  CLI::App* Add(const std::string& name, const std::string& description,
                std::function<Status()> run);
  bool json = false;
};

// A float in the fewest digits that read back as the same float. Infinite and NaN are null.
Json ShortNumber(float number);

std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view text);

void Print(const Json& json);

// An id and its name as people read them: "130  Spur 30 Hz low load", or "130" where it has none.
std::string WithName(const Json& id, const Json& name);

// A table for a terminal: columns aligned, those with nothing but numbers to the right.
void PrintTable(const std::vector<std::string>& headings,
                const std::vector<std::vector<std::string>>& rows);

// The commands, each in the file of its name.
void AddCheck(CommandLine& line);
void AddLoad(CommandLine& line);
void AddNames(CommandLine& line);
void AddDump(CommandLine& line);
void AddTables(CommandLine& line);
void AddMode(CommandLine& line);
void AddKey(CommandLine& line);
void AddPick(CommandLine& line);
void AddChannel(CommandLine& line);
void AddRotors(CommandLine& line);
void AddCalc(CommandLine& line);
void AddOrder(CommandLine& line);
void AddIntervals(CommandLine& line);
void AddPolygon(CommandLine& line);
void AddTrigger(CommandLine& line);

}  // namespace kestrindb
