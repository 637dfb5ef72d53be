// kestrindb, the command-line host of lKestrinDb: loads a parameter file and asks it.
//
// Answers go to standard output, the library's log to standard error. Exit status 0: fine; 1: the
// data base was refused or lines of it were bad; 2: the file can't be used; 3: the user cancelled;
// 4: there is no terminal for a command that needs one; beyond that, the command line itself was
// wrong.

#include <exception>
#include <iostream>

#include "Command.h"

int main(int argc, char** argv) {
  try {
    kestrindb::CommandLine line;
    line.app.require_subcommand(1);
    kestrindb::AddLoad(line);
    kestrindb::AddNames(line);
    kestrindb::AddDump(line);
    kestrindb::AddTables(line);
    kestrindb::AddCheck(line);
    kestrindb::AddMode(line);
    kestrindb::AddKey(line);
    kestrindb::AddPick(line);
    kestrindb::AddChannel(line);
    kestrindb::AddRotors(line);
    kestrindb::AddCalc(line);
    kestrindb::AddOrder(line);
    kestrindb::AddIntervals(line);
    kestrindb::AddPolygon(line);
    kestrindb::AddTrigger(line);
    CLI11_PARSE(line.app, argc, argv);
    if (!std::cout.flush()) {
      throw kestrindb::Failure(kestrindb::file_unusable, "The answer can't be written.");
    }
    return line.status;
  } catch (const kestrindb::Failure& failure) {
    std::cerr << "kestrindb: " << failure.what() << '\n';
    return failure.status;
  } catch (const std::exception& error) {
    std::cerr << "kestrindb: " << error.what() << '\n';
    return kestrindb::data_bad;
  }
}
