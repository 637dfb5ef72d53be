// What people type and read: the sessions of the documents and of cases/sessions, typed in again.
//
// A line behind "$ " goes to a shell, in a folder that holds the samples and the documents, and so
// do the lines behind "> " that go on with it. What it shows stands below, until the next "$ ", the
// end of a block (```) or a comment (;). There "..." is any number of lines, and an exit status
// other than 0 stands in brackets.
#include <cstdio>
#include <regex>

#include "support.h"

namespace {

namespace fs = std::filesystem;

const fs::path project = fs::path(KESTRIN_SAMPLES).parent_path();

// What a command shows in the folder, behind a line feed.
std::string Shown(const std::string& command, const std::string& folder) {
  std::string shown = "\n";
  const std::string path = fs::path(KESTRINDB).parent_path().string();
  const std::string script = "export LC_ALL=C PATH=" + path + ":$PATH; cd " + folder + "\n";
  FILE* const pipe = popen((script + "{ " + command + "\n} 2>&1").c_str(), "r");
  for (int c = std::getc(pipe); c != EOF; c = std::getc(pipe)) shown += static_cast<char>(c);
  const int status = pclose(pipe);
  return status == 0 ? shown : shown + "[" + std::to_string(WEXITSTATUS(status)) + "]\n";
}

// With "..." for the lines that the expected text passes over.
std::string Shortened(std::string shown, const std::string& expected) {
  const std::string gap = "\n...\n";
  for (auto at = expected.find(gap); at < shown.size(); at = expected.find(gap, at + 1)) {
    const auto next = at + gap.size() - 1;
    const std::string line = expected.substr(next, expected.find('\n', next + 1) - next);
    const auto end = line == "\n" ? shown.size() - 1 : shown.find(line + "\n", at);
    shown.replace(at, end - at, gap, 0, gap.size() - 1);
  }
  return shown;
}

class Sessions : public testing::TestWithParam<fs::path> {};

TEST_P(Sessions, ShowWhatIsWritten) {
  const std::string folder = testing::TempDir() + "session_" + std::to_string(getpid());
  fs::create_directory(folder);
  for (const std::string name : {"docs", "samples", "tests"}) {
    fs::create_directory_symlink(project / name, fs::path(folder) / name);
  }
  std::string command;
  std::string expected;
  std::string place;
  const auto replay = [&] {
    while (expected.ends_with("\n\n")) expected.pop_back();
    EXPECT_EQ(Shortened(Shown(command, folder), expected), expected) << place << command;
    command.clear();
  };
  std::ifstream page(GetParam());
  std::string line;
  for (int number = 1; std::getline(page, line); ++number) {
    const bool is_typed = line.starts_with("$ ");
    if (!command.empty() && (is_typed || line == "```" || line.starts_with(';'))) replay();
    if (is_typed) {
      place = GetParam().string() + ":" + std::to_string(number) + ": ";
      command = line.substr(2);
      expected = "\n";
    } else if (expected == "\n" && line.starts_with("> ")) {
      command += line.replace(0, 2, "\n");
    } else {
      expected += line + "\n";
    }
  }
  if (!command.empty()) replay();
  fs::remove_all(folder);
}

std::vector<fs::path> Pages() {
  std::vector<fs::path> pages{project / "README.md", project / "docs/concepts.md",
                              project / "docs/order-definitions.md", project / "docs/json.md",
                              project / "docs/parameter-file.md"};
  const fs::directory_iterator files(project / "tests/cases/sessions");
  pages.insert(pages.end(), begin(files), end(files));
  return pages;
}

INSTANTIATE_TEST_SUITE_P(Of, Sessions, testing::ValuesIn(Pages()), [](const auto& page) {
  return std::regex_replace(page.param.stem().string(), std::regex("-"), "_");
});

}  // namespace
