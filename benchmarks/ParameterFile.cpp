#include "ParameterFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace benchmarks {
namespace {

constexpr int modes = 300;
constexpr int first_parameter = 10000;
constexpr int rotors = 9;
constexpr int first_gear = 11;  // a gear of each rotor

// Of 1000 lines so many are ...
constexpr std::size_t parameters_per_mille = 16;
constexpr std::size_t quantities_per_mille = 268;  // whole keys, the lines of <TIpParamAndStore>
constexpr std::size_t polygons_per_mille = 3;

constexpr std::size_t calc_parameters = 6;
constexpr int points = 8;  // of a polygon

// Spectral intervals: around a mesh and its harmonics, between sidebands, from an order to the
// mesh.
constexpr std::array<std::string_view, 5> intervals = {"H1-O0.5;H1+O0.5", "H2-O0.5;H2+O0.5",
                                                       "H1-M1;H1+M1", "O2;H1", "H1-L2;H1+L2"};

using Key = std::array<int, 6>;  // test step, instrument, channel, object, parameter, sensor

// Integer arithmetic alone: the distributions of the standard library may differ between systems.
class Random {
 public:
  int Below(std::size_t end) { return static_cast<int>(engine_() % end); }
  bool Chance(unsigned percent) { return engine_() % 100 < percent; }

  template <class T>
  void Shuffle(std::vector<T>& things) {
    for (std::size_t i = things.size(); i > 1; --i) std::swap(things[i - 1], things[engine_() % i]);
  }

 private:
  std::mt19937_64 engine_{20090620};
};

// A line of a section, made field by field.
class Row {
 public:
  Row() : text_("\t") {}
  explicit Row(const Key& key) : Row() {
    for (const int id : key) *this << id;
  }
  Row& operator<<(int number) { return Append(number); }
  Row& operator<<(float number) { return Append(number); }
  Row& operator<<(std::string_view text) {
    text_.append("\"").append(text).append("\" ");
    return *this;
  }
  std::string Take() {
    text_.back() = '\n';
    return std::move(text_);
  }

 private:
  template <class Number>
  Row& Append(Number number) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text_.append(digits.data(), end).append(" ");
    return *this;
  }

  std::string text_;
};

std::string Numbered(std::string_view word, int number) {
  return std::string(word).append(" ").append(std::to_string(number));
}

class Writer {
 public:
  Writer(std::size_t lines, Order order)
      : parameters_(std::max<std::size_t>(lines * parameters_per_mille / 1000, 20)),
        quantities_(lines * quantities_per_mille / 1000),
        polygons_(static_cast<int>(lines * polygons_per_mille / 1000)),
        order_(order),
        text_(
            "\xEF\xBB\xBF; Made for measuring.\n\n"
            "<DbDesign.CacheVersion>: 215\n<DbDesign.CacheMinorVersion>: 1\n"
            "<QType><FBaseName>: \"Benchmark\"\n\n") {}

  std::string Write() {
    WriteNames();
    WriteMachine();
    WriteParameters();
    WriteQuantities();
    WritePolygons();
    return std::move(text_);
  }

 private:
  static int Channel(int parameter) { return 1 + parameter % 12; }
  static int Location(int parameter) { return 1 + parameter / 12 % 40; }
  static int Instrument(int parameter) { return 1001 + parameter % 60; }

  void Section(std::string_view name, std::vector<std::string> rows) {
    if (order_ == Order::shuffled) of_order_.Shuffle(rows);
    text_.append("; Rows of ").append(name).append("\n").append(name).append(": {\n");
    for (const std::string& row : rows) text_ += row;
    text_.append("}\t; ").append(name).append("\n\n");
  }

  // One row for each number from first on.
  template <class Fill>
  void Section(std::string_view name, int first, int count, Fill fill) {
    std::vector<std::string> rows;
    for (int id = first; id < first + count; ++id) {
      Row row;
      row << id;
      fill(row, id);
      rows.push_back(row.Take());
    }
    Section(name, std::move(rows));
  }

  void Names(std::string_view name, int first, int count, std::string_view word) {
    Section(name, first, count, [&](Row& row, int id) { row << Numbered(word, id); });
  }

  void WriteNames() {
    Names("<TMode>", 1, modes, "Pr\u00FCfschritt Hochlauf");
    Names("<TChannel>", 1, 12, "Channel");
    Names("<TLocation>", 1, 40, "Bearing seat");
    Names("<TInstrument>", 1001, 60, "Instrument");
    Names("<TPhysMode>", 1, 6, "Gear");
    Names("<TApplicationSignal>", 1, 30, "Beschleunigung m/s\u00B2");
    Section("<TModeProperty>", 1, modes,
            [](Row& row, int mode) { row << 1 + mode % 6 << 0 << -1 << 0; });
    Section("<TChannelProperty>", 1, 12,
            [](Row& row, int channel) { row << (1 << channel % 3) << channel % rotors; });
    Section("<TErrorCode>", 1, modes, [](Row& row, int error) {
      row << 2 << Numbered("Level too high, error", error) << 1 + error % 40 << 11 << 0;
    });
    Section("<TTriggerParam>", 1, modes, [](Row& row, int mode) {
      row << 1 << 1 << 1 + mode % 30 << 0 << 600.0F << 3000.0F << 50.0F << 0 << 2 << 0 << -1 << 0;
    });
  }

  void WriteMachine() {
    std::vector<std::string> speeds;
    std::vector<std::string> sources;
    std::vector<std::string> gears;
    for (int phys_mode = 1; phys_mode <= 6; ++phys_mode) {
      for (int rotor = 1; rotor <= rotors; ++rotor) {
        const float speed = 1.0F / static_cast<float>(rotor);
        speeds.push_back((Row() << phys_mode << rotor << speed).Take());
        sources.push_back((Row() << phys_mode << rotor << 1).Take());
      }
    }
    for (int gear = first_gear; gear < first_gear + rotors; ++gear) {
      for (int phys_mode = 1; phys_mode <= 6; ++phys_mode) {
        gears.push_back((Row() << gear << phys_mode << 1 + (gear - first_gear)).Take());
      }
    }
    Section("<TRotorSpeed>", std::move(speeds));
    Section("<TRotorSpeedSource>", std::move(sources));
    Section("<TOrderSource2Rotor>", std::move(gears));
    Section("<TSpeedSource>", 1, 1, [](Row& row, int) { row << 2; });
    Section("<TBaseOrder>", 1, first_gear + rotors - 1, [](Row& row, int gear) {
      row << (gear < first_gear ? 1.0F : 17.0F + 1.5F * static_cast<float>(gear));
    });
  }

  void WriteParameters() {
    const auto count = static_cast<int>(parameters_);
    Section("<TInstrumentParam>", first_parameter, count, [](Row& row, int id) {
      row << Instrument(id) << Numbered(id % 7 != 0 ? "Mesh H1" : "K\u00F6rperschall", id) << 1 << 0
          << 0;
    });
    std::vector<std::string> rows;
    for (int id = first_parameter; id < first_parameter + count; ++id) {
      const std::string reference = std::to_string(first_gear + id % rotors);
      const std::string_view interval = intervals[static_cast<std::size_t>(id) % intervals.size()];
      const std::array<std::pair<int, std::string_view>, calc_parameters> values = {
          {{0, "3"}, {1, "1"}, {2, "6"}, {3, interval}, {4, reference}, {7, "2500"}}};
      for (const auto& [number, value] : values) {
        rows.push_back((Row() << id << number << value).Take());
      }
    }
    Section("<TIpCalcParameter>", std::move(rows));
  }

  // In the order of their comparison. Each test step measures as many parameters.
  std::set<Key> MakeKeys() {
    std::set<Key> keys;
    const std::size_t per_mode = std::min(quantities_ / modes, parameters_ * 4);
    for (int mode = 1; mode <= modes; ++mode) {
      for (std::size_t end = keys.size() + per_mode; keys.size() < end;) {
        const int parameter = first_parameter + random_.Below(parameters_);
        keys.insert({mode, Instrument(parameter), Channel(parameter), Location(parameter),
                     parameter, 11 + random_.Below(4)});
      }
    }
    return keys;
  }

  // A row for so many of the keys; `fill` appends what stands behind the key.
  template <class Fill>
  void KeySection(std::string_view name, const std::set<Key>& keys, unsigned percent, Fill fill) {
    std::vector<std::string> rows;
    for (const Key& key : keys) {
      if (!random_.Chance(percent)) continue;
      Row row(key);
      fill(row);
      rows.push_back(row.Take());
    }
    Section(name, std::move(rows));
  }

  void WriteQuantities() {
    const std::set<Key> keys = MakeKeys();
    const auto tenths = [this](std::size_t end) {
      return static_cast<float>(random_.Below(end)) / 10;
    };
    KeySection("<TIpParamAndStore>", keys, 100,
               [&](Row& row) { row << 1 << 0.0F << 100 + tenths(1000) << 0 << 0.0F; });
    KeySection("<TIpLearnParams>", keys, 70, [&](Row& row) {
      row << 2 << 1238544000 + random_.Below(1000000) << 50 << 1243814400;
    });
    KeySection("<TGrex11>", keys, 50, [&](Row& row) { row << random_.Below(2); });
    KeySection("<TLimSValue>", keys, 70,
               [&](Row& row) { row << 2 << tenths(200) << 60 + tenths(500); });
    KeySection("<TLimCValue>", keys, 20, [&](Row& row) {
      row << 2 << -1 << 1 + random_.Below(static_cast<std::size_t>(polygons_) + 1) << 0 << -1;
    });
    KeySection("<TLimArea>", keys, 10, [&](Row& row) { row << 1 << 0.0F << 200 + tenths(900); });
    Section("<TGrex10001>", 0, modes, [&](Row& row, int) {
      row << Instrument(random_.Below(60)) << -1 << -1 << -1 << -1 << 11 << -1 << -1 << 1 << 0.0F
          << 0 << 0.0F << 0.0F << 0.0F << 0.0F;
    });
  }

  void WritePolygons() {
    Section("<TIpPolygon>", 1, polygons_,
            [](Row& row, int id) { row << 1 << Numbered("Limit curve", id); });
    std::vector<std::string> rows;
    for (int polygon = 1; polygon <= polygons_; ++polygon) {
      for (int point = 0; point < points; ++point) {
        const float y = 70.5F + static_cast<float>(random_.Below(300)) / 10;
        rows.push_back(
            (Row() << polygon << 600.0F + 300.0F * static_cast<float>(point) << y).Take());
      }
    }
    Section("<TIpPolygonValue>", std::move(rows));
  }

  std::size_t parameters_;
  std::size_t quantities_;
  int polygons_;
  Order order_;
  Random random_;
  Random of_order_;  // of its own, so that shuffled files hold the rows of sorted ones
  std::string text_;
};

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

std::unique_ptr<std::FILE, CloseFile> Open(const std::string& name, const char* mode) {
  std::unique_ptr<std::FILE, CloseFile> file(std::fopen(name.c_str(), mode));
  if (!file) throw std::runtime_error("can't open " + name);
  return file;
}

}  // namespace

std::string MakeParameterFile(std::size_t lines, Order order) {
  return Writer(lines, order).Write();
}

std::string WithBadLines(const std::string& file) {
  std::string bad;
  bad.reserve(file.size());
  std::istringstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('\t') && line.back() >= '0' && line.back() <= '9') {
      line.replace(line.rfind(' ') + 1, std::string::npos, "x");
    }
    bad += line + '\n';
  }
  return bad;
}

const std::string& TemporaryFile::Name() const {
  if (!name_.empty()) return name_;
  static const unsigned process = std::random_device()();
  static int number = 0;
  name_ = std::filesystem::temp_directory_path() /
          ("kestrin-" + std::to_string(process) + "-" + std::to_string(++number) + ".par");
  WriteFile(name_, bytes_());
  return name_;
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  std::filesystem::remove(name_, ignored);
}

std::string ReadFile(const std::string& name) {
  const auto file = Open(name, "rb");
  std::string bytes(std::filesystem::file_size(name), '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  return bytes;
}

void WriteFile(const std::string& name, const std::string& bytes) {
  const auto file = Open(name, "wb");
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
    throw std::runtime_error("can't write " + name);
  }
}

}  // namespace benchmarks
