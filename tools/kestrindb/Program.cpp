// kestrindb completion SHELL, kestrindb man: the program itself, out of its table of commands.

#include <CLI/CLI.hpp>
#include <cctype>
#include <iostream>
#include <sstream>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

Json ToJson(const CLI::Option& option) {
  Json names = Json::array();
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  const bool is_argument = names.empty();
  if (is_argument) names.push_back(option.get_name());
  const std::string type = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
  Json choices = Json::array();
  std::istringstream words(!type.empty() && std::islower(type[0]) != 0 ? type : "");
  for (std::string word; std::getline(words, word, '|');) choices.push_back(word);
  return {{"names", names}, {"is_argument", is_argument}, {"required", option.get_required()},
          {"type", type},   {"choices", choices},         {"help", option.get_description()}};
}

// Arguments first; what stands in groups is the command's.
Json OptionsOf(const CLI::App& app) {
  std::vector<const CLI::App*> groups{&app};
  for (const CLI::App* group : app.get_subcommands({})) {
    if (group->get_name().empty()) groups.push_back(group);
  }
  Json arguments = Json::array();
  Json options = Json::array();
  for (const CLI::App* group : groups) {
    for (const CLI::Option* option : group->get_options()) {
      const bool is_help = option == group->get_help_ptr();
      if (is_help && app.get_parent() != nullptr) continue;
      Json json = ToJson(*option);
      (json["is_argument"] ? arguments : options).push_back(std::move(json));
    }
  }
  for (Json& option : options) arguments.push_back(std::move(option));
  return arguments;
}

Json DescribeProgram(const CLI::App& app) {
  Json json;
  json["name"] = app.get_name();
  json["version"] = LibraryVersion();
  json["help"] = app.get_description();
  json["options"] = OptionsOf(app);
  json["commands"] = Json::array();
  for (const Command& command : Commands()) {
    json["commands"].push_back({{"name", command.name},
                                {"help", command.help},
                                {"example", command.example},
                                {"options", OptionsOf(*app.get_subcommand(command.name))}});
  }
  return json;
}

// ---- what a shell completes ----------------------------------------------------------------

// The names of the options, with blanks between.
std::string OptionWords(const Json& options) {
  std::string words;
  for (const Json& option : options) {
    if (option["is_argument"]) continue;
    words += (words.empty() ? "" : " ") + CellText(option["names"]);
  }
  return words;
}

std::string CommandWords(const Json& program) {
  std::string words;
  for (const Json& command : program["commands"]) {
    words += (words.empty() ? "" : " ") + Cell(command, "name");
  }
  return words;
}

// A word for a shell script, whatever it holds.
std::string Quoted(std::string text) {
  for (auto at = text.find('\''); at != std::string::npos; at = text.find('\'', at + 4)) {
    text.replace(at, 1, "'\\''");
  }
  return '\'' + text + '\'';
}

// An argument with choices completes to them, another one to file names.
void PrintBash(const Json& program) {
  std::cout
      << "_kestrindb() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} command= place=0 words= i\n"
         "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
         "    case ${COMP_WORDS[i]} in\n"
         "      --lang) ((i++)) ;;\n"
         "      -*) ;;\n"
         "      *) if [[ $command ]]; then ((place++)); else command=${COMP_WORDS[i]}; fi ;;\n"
         "    esac\n"
         "  done\n"
         "  [[ $command ]] || place=\n"
         "  [[ $word == -* ]] && place=options\n"
         "  case $command:$place in\n"
         "    :) words="
      << Quoted(CommandWords(program)) << " ;;\n    help:0) words=" << Quoted(CommandWords(program))
      << " ;;\n    :options) words=" << Quoted(OptionWords(program["options"])) << " ;;\n";
  for (const Json& command : program["commands"]) {
    const std::string name = Cell(command, "name");
    std::cout << "    " << name
              << ":options) words=" << Quoted(OptionWords(command["options"]) + " --lang")
              << " ;;\n";
    int place = 0;
    for (const Json& option : command["options"]) {
      if (!option["is_argument"]) continue;
      if (!option["choices"].empty()) {
        std::cout << "    " << name << ':' << place
                  << ") words=" << Quoted(CellText(option["choices"])) << " ;;\n";
      }
      ++place;
    }
  }
  std::cout << "  esac\n"
               "  case $command:${COMP_WORDS[COMP_CWORD - 1]} in\n";
  const auto print_choices = [](const std::string& command, const Json& options) {
    for (const Json& option : options) {
      if (option["is_argument"] || option["choices"].empty()) continue;
      std::cout << "    " << command << ':' << CellText(option["names"].back())
                << ") words=" << Quoted(CellText(option["choices"])) << " ;;\n";
    }
  };
  print_choices("*", program["options"]);
  for (const Json& command : program["commands"]) {
    print_choices(Cell(command, "name"), command["options"]);
  }
  std::cout << "  esac\n"
               "  COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
               "}\n"
               "complete -o bashdefault -o default -F _kestrindb kestrindb\n";
}

// In what zsh is told of an option brackets and colons have a meaning.
std::string ForZsh(const Json& option) {
  const auto escaped = [](const std::string& text) {
    std::string out;
    for (const char c : text) {
      if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
      out += c;
    }
    return out;
  };
  const std::string values =
      option["choices"].empty() ? "_files" : '(' + CellText(option["choices"]) + ')';
  if (option["is_argument"]) {
    return ' ' + Quoted(':' + CellText(option["names"]) + ':' + values);
  }
  std::string text;
  for (const Json& name : option["names"]) {
    const std::string takes =
        Cell(option, "type").empty() ? "" : ":" + escaped(option["type"]) + ':' + values;
    text += ' ' + Quoted(name.get<std::string>() + '[' + escaped(option["help"]) + ']' + takes);
  }
  return text;
}

void PrintZsh(const Json& program) {
  std::cout << "#compdef kestrindb\n"
               "local -a commands\n"
               "commands=(\n";
  for (const Json& command : program["commands"]) {
    std::cout << "  " << Quoted(Cell(command, "name") + ':' + Cell(command, "help")) << '\n';
  }
  std::cout << ")\n"
               "if ((CURRENT == 2)); then\n"
               "  _describe command commands\n"
               "  return\n"
               "fi\n"
               "shift words\n"
               "((CURRENT--))\n"
               "case $words[1] in\n";
  for (const Json& command : program["commands"]) {
    std::cout << "  " << Cell(command, "name") << ") _arguments";
    for (const Json& option : command["options"]) std::cout << ForZsh(option);
    std::cout << " ;;\n";
  }
  std::cout << "esac\n";
}

void PrintFish(const Json& program) {
  const auto print = [](const std::string& condition, const Json& option) {
    if (option["is_argument"] && option["choices"].empty()) return;
    std::cout << "complete -c kestrindb -n " << Quoted(condition);
    for (const Json& name : option["names"]) {
      if (option["is_argument"]) continue;
      const auto& text = name.get_ref<const std::string&>();
      std::cout << (text.starts_with("--") ? " -l " + text.substr(2) : " -s " + text.substr(1));
    }
    if (!option["is_argument"] && !Cell(option, "type").empty()) std::cout << " -r";
    if (!option["choices"].empty()) std::cout << " -a " << Quoted(CellText(option["choices"]));
    std::cout << " -d " << Quoted(Cell(option, "help")) << '\n';
  };
  for (const Json& command : program["commands"]) {
    std::cout << "complete -c kestrindb -f -n __fish_use_subcommand -a " << Cell(command, "name")
              << " -d " << Quoted(Cell(command, "help")) << '\n';
  }
  for (const Json& option : program["options"]) print("__fish_use_subcommand", option);
  for (const Json& command : program["commands"]) {
    for (const Json& option : command["options"]) {
      print("__fish_seen_subcommand_from " + Cell(command, "name"), option);
    }
  }
}

// ---- the manual page -----------------------------------------------------------------------

// A text for troff, which takes a backslash, a hyphen and a period or quote in front for itself.
std::string Troff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else {
      out += (c == '.' || c == '\'') && out.empty() ? std::string("\\&") + c : std::string(1, c);
    }
  }
  return out;
}

void PrintOptions(const Json& options) {
  for (const Json& option : options) {
    std::string names;
    for (const Json& name : option["names"]) {
      names += (names.empty() ? "" : ", ") + name.get<std::string>();
    }
    const std::string type =
        option["is_argument"] && option["choices"].empty() ? "" : option["type"];
    std::cout << ".TP\n\\fB" << Troff(names) << "\\fR" << (type.empty() ? "" : " \\fI")
              << Troff(type) << (type.empty() ? "" : "\\fR") << '\n'
              << Troff(Cell(option, "help")) << (option["required"] ? " (needed)" : "") << '\n';
  }
}

}  // namespace

Answer DescribeCompletion(const Request& request) {
  Json json = DescribeProgram(*request.program);
  json["shell"] = request.shell;
  return {json, fine};
}

void PrintCompletion(const Json& json) {
  json["shell"] == "bash"  ? PrintBash(json)
  : json["shell"] == "zsh" ? PrintZsh(json)
                           : PrintFish(json);
}

Answer DescribeManual(const Request& request) { return {DescribeProgram(*request.program), fine}; }

void PrintManual(const Json& json) {
  std::cout << R"(.TH KESTRINDB 1 "" "kestrindb )" << Cell(json, "version") << "\"\n"
            << ".SH NAME\nkestrindb \\- " << Troff(Cell(json, "help")) << '\n'
            << ".SH SYNOPSIS\n.B kestrindb\n[\\fIoption\\fR ...] \\fIcommand\\fR ...\n"
            << ".SH OPTIONS\n";
  PrintOptions(json["options"]);
  std::cout << ".SH COMMANDS\n";
  for (const Json& command : json["commands"]) {
    const std::string name = Cell(command, "name");
    std::cout << ".SS " << name << '\n' << Troff(Cell(command, "help")) << ".\n";
    PrintOptions(command["options"]);
    std::cout << ".PP\nExample:\n.PP\n.RS 4\n.nf\n"
              << Troff("kestrindb " + name + ' ' + Cell(command, "example")) << "\n.fi\n.RE\n";
  }
  std::cout << ".SH ENVIRONMENT\n"
               ".TP\n\\fBLC_ALL\\fR, \\fBLC_MESSAGES\\fR, \\fBLANG\\fR\nThe language, unless "
               "\\-\\-lang names one.\n"
               ".TP\n\\fBPAGER\\fR\nThe program that shows an answer longer than the terminal.\n"
               ".TP\n\\fBNO_COLOR\\fR\nNo colours, if this is set.\n"
               ".SH EXIT STATUS\n"
               ".TP\n0\nFine.\n"
               ".TP\n1\nThe data base was refused, lines of it were bad, or it doesn't hold what "
               "was asked for.\n"
               ".TP\n2\nThe file can't be used.\n"
               ".TP\n3\nThe user cancelled.\n"
               ".TP\n4\nThere is no terminal for pick.\n"
               ".TP\nabove\nThe command line was wrong.\n";
}

}  // namespace kestrindb
