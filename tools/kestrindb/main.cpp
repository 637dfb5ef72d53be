// kestrindb, the command-line host of lKestrinDb: loads a parameter file and asks it.
//
// Answers go to standard output, the library's log to standard error. Exit status 0: fine; 1: the
// data base was refused or lines of it were bad; 2: the file can't be used; 3: the user cancelled;
// 4: there is no terminal for a command that needs one; beyond that, the command line itself was
// wrong.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>

#include "Commands.h"

using namespace kestrin;

namespace {

using namespace kestrindb;

void AddLanguage(CLI::App& app) {
  std::string tags;
  for (const Language& language : Languages()) {
    tags += (tags.empty() ? "" : ", ") + std::string(language.tag);
  }
  app.add_option_function<std::string>(
         "--lang", [](const std::string& tag) { SetUserLanguage(tag); },
         "Language of the library's texts: " + tags + "; without it that of the environment")
      ->check([tags](const std::string& tag) {
        return FindLanguage(tag) ? std::string()
                                 : "There is no language '" + tag + "', only " + tags + ".";
      });
}

// The options of the program, such as --lang, may stand behind a command too.
void AddCommand(CLI::App& app, const Command& command, Request& request) {
  CLI::App* const added = app.add_subcommand(command.name, command.help)->fallthrough();
  added->add_flag("--json", request.json, "Give the answer as JSON");
  for (Command::Argument* const add : command.arguments) add(*added, request);
}

Answer AnswerOf(const Command& command, const Request& request) {
  if (const auto* describe = std::get_if<Command::DescribeAlone*>(&command.describe)) {
    return (*describe)(request);
  }
  const DataBase data(request.file);
  data.RequireAccepted();
  if (request.mode) RequireMode(data.params, *request.mode);
  return {std::get<Command::Describe*>(command.describe)(data.params, request), data.LoadStatus()};
}

Status Run(const Command& command, const Request& request) {
  const Answer answer = AnswerOf(command, request);
  if (!request.svg.empty()) command.draw(answer.json, request);
  if (request.json) {
    std::cout << answer.json.dump(2) << '\n';
  } else {
    command.print(answer.json);
  }
  if (!std::cout.flush()) throw Failure(file_unusable, "The answer can't be written.");
  return answer.status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    CLI::App app{"Loads and asks lKestrinDb parameter files.", "kestrindb"};
    app.set_version_flag("--version", "kestrindb " + std::string(LibraryVersion()),
                         "Print the version and exit");
    AddLanguage(app);
    Request request;
    for (const Command& command : Commands()) AddCommand(app, command, request);
    app.require_subcommand(1);
    CLI11_PARSE(app, argc, argv);
    const std::string chosen = app.get_subcommands().front()->get_name();
    return Run(*std::find_if(Commands().begin(), Commands().end(),
                             [&](const Command& command) { return command.name == chosen; }),
               request);
  } catch (const Failure& failure) {
    if (*failure.what() != '\0') std::cerr << "kestrindb: " << failure.what() << '\n';
    return failure.status;
  } catch (const std::exception& error) {
    std::cerr << "kestrindb: " << error.what() << '\n';
    return data_bad;
  }
}
