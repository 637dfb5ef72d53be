// Binary table files. An input is the number of fields, their sizes, and the file: a header and
// fields. Whatever a reader takes is written and read again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "Fuzz.h"
#include "tables/TableFile.h"

namespace fuzz {
namespace {

class BytesFile {
 public:
  BytesFile() = default;
  explicit BytesFile(Bytes bytes) : bytes_(bytes.begin(), bytes.end()) {}

  unsigned Read(void* buffer, unsigned count) {
    count = static_cast<unsigned>(std::min<std::size_t>(count, bytes_.size() - place_));
    if (count != 0) std::memcpy(buffer, bytes_.data() + place_, count);
    place_ += count;
    return count;
  }
  void Write(const void* buffer, unsigned count) {
    const auto* const from = static_cast<const std::uint8_t*>(buffer);
    bytes_.insert(bytes_.end(), from, from + count);
  }
  void Rewind() { place_ = 0; }
  std::size_t place() const { return place_; }
  std::size_t size() const { return bytes_.size(); }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t place_ = 0;
};

// Blocks of exactly the sizes of the fields, so that a byte too many is seen.
class Fields {
 public:
  explicit Fields(const std::vector<int>& sizes) : sizes_(sizes) {
    for (const int size : sizes) {
      const std::size_t elements = size < 0 ? static_cast<std::size_t>(-size) : 0;
      blocks_.emplace_back(size < 0 ? elements * sizeof(wchar_t) : static_cast<std::size_t>(size));
    }
    for (auto& block : blocks_) places_.push_back(block.data());
  }

  bool Read(BytesFile& file) {
    return DynTables::ReadFromFile(file, sizes_.data(), places_.data(), Count());
  }
  void Write(BytesFile& file) const {
    DynTables::WriteToFile(file, sizes_.data(), places_.data(), Count());
  }
  friend bool operator==(const Fields& a, const Fields& b) { return a.blocks_ == b.blocks_; }

 private:
  unsigned Count() const { return static_cast<unsigned>(sizes_.size()); }

  std::vector<int> sizes_;
  std::vector<std::vector<std::uint8_t>> blocks_;
  std::vector<void*> places_;
};

bool SameHeader(const DynTables::QtTableHeader& a, const DynTables::QtTableHeader& b) {
  return a.format_version == b.format_version && a.param1 == b.param1 && a.param2 == b.param2 &&
         a.param3 == b.param3;
}

void HeaderRoundTrip(const DynTables::QtTableHeader& header) {
  // One below the first version with both parameters is never written.
  if (header.format_version < DynTables::first_version_with_params) return;
  BytesFile file;
  DynTables::WriteToFile(file, header);
  Require(file.size() == DynTables::table_header_size, "a header has its size");
  DynTables::QtTableHeader again;
  Require(DynTables::ReadFromFile(file, again), "a header that was written can be read");
  Require(SameHeader(header, again), "a header reads back as it was");
}

}  // namespace

void TableFile(Bytes bytes) {
  Input input(bytes);
  std::vector<int> sizes(input.Below(12));
  for (int& size : sizes) {
    size = input.Take<std::int8_t>();
    if (size < -120) size = -static_cast<int>(DynTables::max_text_length);  // the longest one
  }
  BytesFile file(input.Rest());
  DynTables::QtTableHeader header;
  if (!DynTables::ReadFromFile(file, header)) return;
  HeaderRoundTrip(header);

  Fields row(sizes);
  while (row.Read(file)) {
    BytesFile copy;
    row.Write(copy);
    Fields again(sizes);
    Require(again.Read(copy), "fields that were written can be read");
    Require(again == row, "fields read back as they were");
    Require(copy.place() == copy.size(), "a reader takes all that a writer wrote");
    if (copy.size() == 0) break;
  }
}

}  // namespace fuzz
