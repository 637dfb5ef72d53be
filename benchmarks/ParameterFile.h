// Parameter files of any size, for measuring.
//
// The mix is that of a large data base of the field: 300 test steps; thousands of parameters, each
// with its calculation parameters; and most lines in tables over whole keys, of which each holds a
// part of all measured quantities. A few texts go beyond ASCII. The same arguments always give the
// same bytes.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace benchmarks {

enum class Order {
  sorted,    // the rows of each section by their keys
  shuffled,  // the rows of each section in any order
};

// The text of a file of about that many lines, as UTF-8 behind the mark.
std::string MakeParameterFile(std::size_t lines, Order order);

// The same file with a letter in place of the last field of each row that ends in a number: lines
// of which all but that field can be read.
std::string WithBadLines(const std::string& file);

// A file that is made when it is asked for, since the large ones take long, and goes when this
// does.
class TemporaryFile {
 public:
  using Maker = std::function<std::string()>;
  explicit TemporaryFile(Maker bytes) : bytes_(std::move(bytes)) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  const std::string& Name() const;

 private:
  Maker bytes_;
  mutable std::string name_;
};

// All bytes of a file. Throws std::runtime_error if it can't be read.
std::string ReadFile(const std::string& name);
void WriteFile(const std::string& name, const std::string& bytes);

}  // namespace benchmarks
