// kestrindb, the command-line host of lKestrinDb: loads a parameter file and asks it.
//
// Answers go to standard output, the library's log to standard error. Exit status 0: fine; 1: the
// data base was refused or lines of it were bad, or two files differ; 2: the file can't be used; 3:
// the user cancelled; 4: there is no terminal for a command that needs one; beyond that, the
// command line itself was wrong.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>

#include "Commands.h"
#include "Names.h"
#include "Output.h"

using namespace kestrin;

namespace {

using namespace kestrindb;

void AddLanguage(CLI::App& app) {
  std::string tags;
  for (const Language& language : Languages()) {
    tags += (tags.empty() ? "" : "|") + std::string(language.tag);
  }
  app.add_option_function<std::string>(
         "--lang", [](const std::string& tag) { SetUserLanguage(tag); },
         "Language of the library's texts; without it that of the environment")
      ->type_name(tags)
      ->check([tags](const std::string& tag) {
        return FindLanguage(tag) ? std::string()
                                 : "there is no language '" + tag + "', only " + tags;
      });
}

// The options of the program, such as --lang, may stand behind a command too.
void AddCommand(CLI::App& app, const Command& command, Request& request) {
  CLI::App* const added = app.add_subcommand(command.name, command.help)->fallthrough();
  added->footer("Example:\n  kestrindb " + std::string(command.name) + ' ' + command.example);
  added->add_flag("--json", request.json, "Give the answer as JSON");
  added->add_flag("--layout", request.layout,
                  "Give the layout of that JSON, with kinds for values");
  for (Command::Argument* const add : command.arguments) add(*added, request);
}

Answer AnswerOf(const Command& command, Request& request) {
  if (const auto* describe = std::get_if<Command::DescribeAlone*>(&command.describe)) {
    return (*describe)(request);
  }
  const DataBase data(request.file);
  data.RequireAccepted();
  for (const auto& resolve : request.resolve) resolve(data.params);
  return {std::get<Command::Describe*>(command.describe)(data.params, request), data.LoadStatus()};
}

Status Run(const Command& command, Request& request) {
  const Answer answer = AnswerOf(command, request);
  if (!request.svg.empty()) command.draw(answer.json, request);
  if (request.svg == "-") return answer.status;
  PrintByPages([&] {
    if (request.json) {
      std::cout << PrintableJson(request.layout ? Layout(answer.json) : answer.json) << '\n';
    } else {
      command.print(answer.json);
    }
  });
  if (!std::cout.flush()) throw Failure(file_unusable, "The answer can't be written.");
  return answer.status;
}

// What is wrong with a word that the command doesn't know.
std::string UnknownWord(const CLI::App& app, const CLI::App& command, const std::string& word) {
  const std::string help = command.get_name() + " --help";
  if (!word.starts_with('-')) {
    return command.get_name() + " has no use for '" + word +
           "': a name with blanks stands in quotes. See kestrindb " + help + '.';
  }
  const std::string option = word.substr(0, word.find('='));
  std::vector<std::wstring> known;
  std::string others;
  std::vector<const CLI::App*> groups{&command};
  for (const CLI::App* group : command.get_subcommands({})) groups.push_back(group);
  for (const CLI::App* group : groups) {
    for (const CLI::Option* each : group->get_options()) {
      for (const std::string& name : each->get_lnames()) known.push_back(Wide("--" + name));
    }
  }
  for (const CLI::App* other : app.get_subcommands({})) {
    if (other->get_option_no_throw(option) == nullptr) continue;
    others += (others.empty() ? "" : ", ") + other->get_name();
  }
  return command.get_name() + " has no option " + option +
         (others.empty() ? "." + Hint(option, known, help)
                         : ", but " + others + " has. See kestrindb " + help + '.');
}

// What is wrong with the command line.
std::string Mistake(const CLI::App& app, const CLI::ParseError& error) {
  if (app.get_subcommands().empty()) {
    const std::vector<std::string> words = app.remaining();
    if (words.empty()) return "A command is needed. See kestrindb --help.";
    std::vector<std::wstring> known;
    for (const CLI::App* each : app.get_subcommands({})) known.push_back(Wide(each->get_name()));
    const bool is_option = words.front().starts_with('-');
    return std::string(is_option ? "There is no option " : "There is no command ") + words.front() +
           '.' + Hint(words.front(), known, "--help");
  }
  const CLI::App& command = *app.get_subcommands().front();
  std::vector<std::string> words = command.remaining(true);
  for (const std::string& word : app.remaining()) words.push_back(word);
  const auto option = std::find_if(words.begin(), words.end(),
                                   [](const std::string& word) { return word[0] == '-'; });
  // What is missing may be behind an option that nobody knows.
  if (option != words.end() && !command.get_allow_extras()) {
    return UnknownWord(app, command, *option);
  }
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError) && !words.empty()) {
    return UnknownWord(app, command, words.front());
  }
  std::string sentence = error.what();
  // Numbers that may have fractions are checked before; those that the parser refuses are whole.
  constexpr std::string_view refused = "Could not convert: ";
  const auto equals = sentence.find(" = ");
  if (sentence.starts_with(refused) && equals != std::string::npos) {
    sentence = sentence.substr(refused.size(), equals - refused.size()) +
               ": a whole number, not too large, is needed, not '" + sentence.substr(equals + 3) +
               '\'';
  }
  if (!sentence.ends_with('.')) sentence += '.';
  return sentence + " See kestrindb " + command.get_name() + " --help.";
}

void Complain(const std::string& sentence) {
  std::cerr << PaintedForErrors("kestrindb:", Colour::error) << ' ' << Printable(sentence) << '\n';
}

// `kestrindb help load` is `kestrindb load --help`.
std::vector<std::string> WordsOf(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  if (!words.empty() && words.front() == "help") {
    words.erase(words.begin());
    words.emplace_back("--help");
  }
  std::reverse(words.begin(), words.end());  // as the parser takes them
  return words;
}

}  // namespace

int main(int argc, char** argv) {
  // A file that may grow no further is a failure to write, and no signal.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    const LogSink sink(
        [](std::wstring_view text, auto, auto) { std::cerr << Printable(Utf8(text)); });
    CLI::App app{"Loads and asks lKestrinDb parameter files.", "kestrindb"};
    app.set_version_flag("-v,--version", "kestrindb " + std::string(LibraryVersion()),
                         "Print the version and exit");
    AddLanguage(app);
    Request request;
    request.program = &app;
    for (const Command& command : Commands()) AddCommand(app, command, request);
    app.require_subcommand(1);
    app.footer(
        "Example:\n  kestrindb load samples/gearbox.par\n\n"
        "kestrindb help COMMAND tells what a command takes, with an example.");
    try {
      app.parse(WordsOf(argc, argv));
    } catch (const CLI::Success& told) {
      if (app.get_subcommands().empty() && !app.remaining().empty()) {
        Complain(Mistake(app, told));  // help of a command that there isn't
        return static_cast<int>(CLI::ExitCodes::RequiredError);
      }
      return app.exit(told);
    } catch (const CLI::ParseError& error) {
      Complain(Mistake(app, error));
      return error.get_exit_code();
    }
    request.json = request.json || request.layout;
    const std::string chosen = app.get_subcommands().front()->get_name();
    return Run(*std::find_if(Commands().begin(), Commands().end(),
                             [&](const Command& command) { return command.name == chosen; }),
               request);
  } catch (const Failure& failure) {
    if (*failure.what() != '\0') Complain(failure.what());
    return failure.status;
  } catch (const std::exception& error) {
    Complain(error.what());
    return data_bad;
  }
}
