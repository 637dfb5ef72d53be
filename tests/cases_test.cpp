// What the data base answers, told in the files of cases/. A file is a row of blocks; each begins
// at the start of a line, and lines that are indented belong to it:
//
//   <TMode>: {              a section of a parameter file, in place of the one of that name before;
//     1 "Run up"            also in one line, <TMode>: { 1 "Run up" | 2 Run }
//   }
//   load                    empties all tables and loads the sections; "load fails" is a load that
//                           fails, "load the sample" one of samples/gearbox.par
//   log                     what has been logged since: category, style and text of each line;
//     8/1 Some text\n       without this block nothing must have been
//   purge                   empties all tables
//   ModeId "Run up" = 1     a question and its answer, as queries.h has them
//   ModeName PhysModeId     several queries with the same arguments, whose answers stand in a row
//     1 = "Run up" 3
//     2 = "Run" 3 | 9 = "" -1
//
// Lines that begin with a semicolon are comments.
#include <cctype>
#include <future>
#include <regex>

#include "queries.h"
#include "support.h"

namespace {

std::string Replaced(const std::string& text, const char* what, const char* with) {
  return std::regex_replace(text, std::regex(what), with);
}

queries::Argument ReadArgument(const std::string& word) {
  const std::wstring text = Text::FromUtf8(word);
  if (text == L"null") return {'t'};
  if (text[0] == L'"' || text[0] == L'\'') return {'t', 0, text.substr(1, text.size() - 2)};
  return {'n', Number::ScanDouble(text).value};
}

class Replay {
 public:
  // With so many threads that ask at once.
  Replay(const std::filesystem::path& path, int threads) : path_(path), threads_(threads) {
    std::ifstream file(path_);
    std::string block;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
      ++number;
      if (line.starts_with(' ') || line.starts_with('}')) {
        block += '\n' + line;
      } else if (!line.empty() && !line.starts_with(';')) {
        Take(block);
        block = line;
        line_ = number;
      }
    }
    Take(block);
    Take("log");
  }

 private:
  struct Question {
    int line;
    std::string text;
    std::vector<const queries::Query*> queries = {};
    std::vector<queries::Argument> arguments = {};
    std::string expected = {};
  };

  void Take(const std::string& block) {
    if (block.starts_with('<')) {
      std::string& section = sections_[block.substr(0, block.find(':'))];
      section = Replaced(Replaced(block, R"(\{ (.*) \}$)", "{\n$1\n}"), R"( \| )", "\n") + '\n';
    } else if (block.starts_with("load") || block == "purge") {
      Take("log");
      data_.params.PurgeTables();
      if (block != "purge") Load(block);
    } else if (block.starts_with("log")) {
      Ask(threads_);
      std::string logged;
      for (const auto& [text, category, style] : data_.log.lines) {
        logged += "\n " + std::to_string(category) + '/' + std::to_string(style) + ' ' +
                  Replaced(Replaced(Text::ToUtf8(text), "\n", "\\n"), "\t", "\\t");
      }
      data_.log.lines.clear();
      Expect(line_, "log", Replaced(logged, "\n *", " "), Replaced(block.substr(3), "\n *", " "));
    } else {
      std::istringstream lines(block);
      std::vector<std::string> names;
      for (std::string line; std::getline(lines, line); ++line_) {
        std::istringstream texts(Replaced(line, R"( \| )", "\v"));
        for (std::string text; std::getline(texts, text, '\v');) TakeQuestion(text, names);
      }
    }
  }

  void Load(const std::string& block) {
    std::string text;
    for (const auto& [name, section] : sections_) text += section;
    const bool loaded = block == "load the sample" ? data_.LoadSample() : data_.LoadText(text);
    Expect(line_, "load", loaded ? "loaded" : "fails", block == "load fails" ? "fails" : "loaded");
  }

  void TakeQuestion(const std::string& text, std::vector<std::string>& names) {
    const auto equals = (text + ' ').find(" = ");
    if (equals > text.size() && !names.empty()) {  // a long answer goes on
      if (questions_.empty()) return Expect(line_, text, "no answer", "one that is asked for");
      questions_.back().expected += Replaced(text, "^ *", " ");
      return;
    }
    Question question{line_, {}};
    const std::string words = text.substr(0, equals);
    static const std::regex word(R"("[^"]*"|'[^']*'|\S+)");
    for (std::sregex_iterator i(words.begin(), words.end(), word), end; i != end; ++i) {
      const bool is_name = std::isupper(static_cast<unsigned char>(i->str()[0])) != 0;
      if (is_name) names.push_back(i->str());
      if (!is_name) question.arguments.push_back(ReadArgument(i->str()));
    }
    if (equals > text.size()) return;  // queries alone
    for (const std::string& name : names) question.text += name + ' ';
    question.text += words;
    question.expected = text.substr(std::min(equals + 3, text.size()));
    bool changes = false;
    for (const std::string& name : names) {
      const auto* query = queries::Find(name, question.arguments);
      if (query == nullptr) return Expect(line_, question.text, "no such query: " + name, "one");
      question.queries.push_back(query);
      changes |= query->changes;
    }
    if (changes) Ask(threads_);
    questions_.push_back(std::move(question));
    if (changes) Ask(1);
  }

  void Ask(int threads) {
    const auto ask = [this] {
      for (const Question& question : questions_) {
        std::string answer;
        for (const auto* query : question.queries) {
          if (!answer.empty()) answer += ' ';
          answer += query->ask(data_.params, question.arguments);
        }
        Expect(question.line, question.text, answer, question.expected);
      }
    };
    {
      std::vector<std::jthread> others;
      while (--threads > 0) others.emplace_back(ask);
      ask();
    }
    questions_.clear();
  }

  void Expect(int line, const std::string& question, const std::string& answer,
              const std::string& expected) {
    if (answer == expected) return;
    ADD_FAILURE_AT(path_.c_str(), line)
        << question << "\n  is       " << answer << "\n  expected " << expected;
  }

  const std::string path_;
  int threads_;
  int line_ = 0;
  std::map<std::string, std::string> sections_ = {
      {"<DbDesign.CacheMinorVersion>", "<DbDesign.CacheMinorVersion>: 1\n"},
      {"<DbDesign.CacheVersion>", "<DbDesign.CacheVersion>: 215\n"}};
  std::vector<Question> questions_;
  TestStore data_;
};

void ReplayAll(int threads) {
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(KESTRIN_SAMPLES "/../tests/cases")) {
    if (file.path().extension() != ".txt") continue;
    Replay(file.path().lexically_normal(), threads);
    ++count;
  }
  EXPECT_GT(count, 0);
}

TEST(Cases, AreAnsweredAsTheyTell) { ReplayAll(1); }

// Under the thread sanitizer this shows races; without it, answers that were mixed up.
TEST(CaseThreads, AreAnsweredAsTheyTell) { ReplayAll(8); }

TEST(CaseThreads, AnswerWhileAnotherDataBaseIsLoaded) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  CParameterLake::Lake().read(Text::FromUtf8(KESTRIN_SAMPLES "/gearbox.par"));
  // A value becomes wide text when somebody asks for it, be it on two threads at once.
  const auto ask_for_values = [] {
    std::vector<const std::wstring*> values;
    for (const auto& line : CParameterLake::Lake()) values.push_back(&line.value());
    return values;
  };
  auto others = std::async(std::launch::async, [&] {
    const auto values = ask_for_values();
    CQtParamDistillery own;
    for (int load = 0; load < 3; ++load) own.ReadTablesFromCandidateLake();
    return values;
  });
  const auto values = ask_for_values();
  for (int round = 0; round < 40; ++round) {
    queries::AskAll(data.params, std::array{130, 7, 2, 405664, 1, 17001, 21}, L"Raw");
  }
  EXPECT_EQ(others.get(), values);
}

}  // namespace
