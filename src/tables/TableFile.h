// Binary table files: a fixed header, then rows laid down field by field. Programs that load the
// library keep tables of their own in them; the data base itself doesn't.
//
// Header, 28 bytes; all numbers are 32-bit unsigned, little-endian:
//
//   offset  size
//        0     4  header_size     28 when written; a reader takes any value
//        4     8  magic           "++++++++"
//       12     4  format_version  the caller's; below 2 the header is old, see below
//       16     4  param1          the caller's
//       20     4  param2          the caller's
//       24     4  param3          the caller's
//
// An old header has no param1 and param2: it is 20 bytes long, with param3 at offset 16. It is
// read, with both of them 1, and never written.
//
// Behind it stand runs of fields, whose sizes reader and writer must agree on: a size of 0 or more
// is a block of that many bytes as they are in memory; a size of -n is a wide text of n characters,
// stored as n in 32 bits and then n characters of 2 bytes, little-endian on every platform, the
// terminator and what stands behind it included. Nothing stands between fields. The file stores
// neither the sizes nor the number of rows.
//
// A file is anything with Read(buffer, count), which returns the number of bytes it got, and
// Write(buffer, count), which has its own way to report a failure; CFile of interfaces/text/File.h
// is one. Readers return false for whatever is cut short or corrupt and log nothing. Any
// thread, with a file of its own.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace DynTables {

struct QtTableHeader {
  std::uint32_t header_size = 0;
  char magic[8] = {};  // no terminator
  std::uint32_t format_version = 0;
  std::uint32_t param1 = 0;
  std::uint32_t param2 = 0;
  std::uint32_t param3 = 0;
};

// A text field that is longer in the file counts as corrupt.
inline constexpr std::uint32_t max_text_length = 200;

inline constexpr std::uint32_t table_header_size = 28;
inline constexpr std::uint32_t first_version_with_params = 2;
inline constexpr char table_magic[9] = "++++++++";

namespace detail {

template <class File>
bool ReadBytes(File& file, void* bytes, std::size_t count) {
  return file.Read(bytes, static_cast<unsigned>(count)) == count;
}

// As far as the file goes: bytes that are not there count as 0. How many there were.
template <class File>
std::size_t ReadWord(File& file, std::uint32_t& word) {
  std::array<unsigned char, 4> bytes{};
  const std::size_t got = file.Read(bytes.data(), 4);
  word = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) word = word << 8U | bytes[i];
  return got;
}

template <class File>
void WriteWord(File& file, std::uint32_t word) {
  const std::array<unsigned char, 4> bytes = {
      static_cast<unsigned char>(word), static_cast<unsigned char>(word >> 8U),
      static_cast<unsigned char>(word >> 16U), static_cast<unsigned char>(word >> 24U)};
  file.Write(bytes.data(), 4);
}

// Texts pass through a small block, so that no size makes for a large one in memory.
using TextBlock = std::array<unsigned char, 512>;

template <class File>
bool ReadText(File& file, wchar_t* text, std::size_t length) {
  TextBlock block;
  while (length > 0) {
    const std::size_t count = std::min(length, block.size() / 2);
    if (!ReadBytes(file, block.data(), 2 * count)) return false;
    for (std::size_t i = 0; i < count; ++i) {
      *text++ = static_cast<wchar_t>(block[2 * i] | block[2 * i + 1] << 8U);
    }
    length -= count;
  }
  return true;
}

template <class File>
void WriteText(File& file, const wchar_t* text, std::size_t length) {
  TextBlock block;
  while (length > 0) {
    const std::size_t count = std::min(length, block.size() / 2);
    for (std::size_t i = 0; i < count; ++i) {
      const auto unit = static_cast<char32_t>(*text++);
      block[2 * i] = static_cast<unsigned char>(unit);
      block[2 * i + 1] = static_cast<unsigned char>(unit >> 8U);
    }
    file.Write(block.data(), static_cast<unsigned>(2 * count));
    length -= count;
  }
}

}  // namespace detail

inline void FillHeader(QtTableHeader& header, unsigned format_version, unsigned param1,
                       unsigned param2, unsigned param3) {
  header.header_size = table_header_size;
  std::memcpy(header.magic, table_magic, sizeof header.magic);
  header.format_version = format_version;
  header.param1 = param1;
  header.param2 = param2;
  header.param3 = param3;
}

template <class File>
void WriteToFile(File& file, const QtTableHeader& header) {
  detail::WriteWord(file, header.header_size);
  file.Write(header.magic, sizeof header.magic);
  detail::WriteWord(file, header.format_version);
  detail::WriteWord(file, header.param1);
  detail::WriteWord(file, header.param2);
  detail::WriteWord(file, header.param3);
}

// What was read before a failure stays in the header.
template <class File>
bool ReadFromFile(File& file, QtTableHeader& header) {
  constexpr std::size_t word = sizeof(std::uint32_t);
  if (detail::ReadWord(file, header.header_size) != word) return false;
  if (!detail::ReadBytes(file, header.magic, sizeof header.magic)) return false;
  if (std::strncmp(header.magic, table_magic, sizeof header.magic) != 0) return false;
  if (detail::ReadWord(file, header.format_version) != word) return false;
  header.param1 = 1;
  header.param2 = 1;
  if (header.format_version >= first_version_with_params) {
    if (detail::ReadWord(file, header.param1) != word) return false;
    if (detail::ReadWord(file, header.param2) != word) return false;
  }
  return detail::ReadWord(file, header.param3) == word;
}

// `fields` points to `count` places, of the sizes that `sizes` tells.
template <class File>
void WriteToFile(File& file, const int* sizes, const void* const* fields, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (sizes[i] >= 0) {
      file.Write(fields[i], static_cast<unsigned>(sizes[i]));
      continue;
    }
    const std::uint32_t length = 0U - static_cast<std::uint32_t>(sizes[i]);
    detail::WriteWord(file, length);
    detail::WriteText(file, static_cast<const wchar_t*>(fields[i]), length);
  }
}

// Fields that were read before a failure stay as read. The length in the file is tested and plays
// no further part: a text takes the size that is declared.
template <class File>
bool ReadFromFile(File& file, const int* sizes, void* const* fields, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (sizes[i] >= 0) {
      if (!detail::ReadBytes(file, fields[i], static_cast<std::size_t>(sizes[i]))) return false;
      continue;
    }
    std::uint32_t length = 0;
    if (detail::ReadWord(file, length) == 0 || length > max_text_length) return false;
    const std::size_t declared = 0U - static_cast<std::uint32_t>(sizes[i]);
    if (!detail::ReadText(file, static_cast<wchar_t*>(fields[i]), declared)) return false;
  }
  return true;
}

}  // namespace DynTables
