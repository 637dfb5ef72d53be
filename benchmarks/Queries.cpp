// What hosts ask while a test runs: the lines of spectrum intervals, cells and positions of
// triggers; and the text of a key, of which lists show thousands.

#include <iterator>
#include <random>
#include <vector>

#include "Benchmarks.h"

namespace benchmarks {
namespace {

constexpr int trigger = 1;  // of each test step
constexpr unsigned axis = 0;

struct Fixture {
  explicit Fixture(const TemporaryFile& file) : data_base(file.Name()), params(data_base.Params()) {
    CParameterLake::Lake().clear();
    interval.LoadTransformParams(1, 1, 12);
    for (const QIdx1& record : AnyKeys(params.IpSvOfSpec())) {
      entries.push_back(params.SpecIntervalRange(static_cast<unsigned>(record[0])).first->second);
    }
    quantities = AnyKeys(params.IpParamAndStore());
    modes = AnyKeys(params.Mode());
    std::mt19937_64 random;
    for (std::size_t i = 0; i < questions; ++i) {
      values.push_back(600.0F + static_cast<float>(random() % 2400));
    }
    Require(triggers.field(1, trigger, axis, kept_axis), "no trigger");
    RequireAnswers();
  }

  void RequireAnswers() const {
    for (std::size_t i = 0; i < few; ++i) {
      CQtSpecInterval::IndexInterval lines;
      std::int64_t cell = 0;
      float edge = 0;
      Require(interval.IndexRange(entries[i], lines, 1600, 0.125F, 1.0F) ==
                  CQtSpecInterval::index_range_ok,
              "no spectral lines");
      Require(triggers.cell(modes[i][0], trigger, axis, values[i], cell, false) &&
                  triggers.position(modes[i][0], trigger, cell, axis, edge) && edge >= values[i],
              "no cell around a value");
    }
  }

  DataBase data_base;
  CQtParamInstance params;
  CQtSpecInterval interval{params};
  CTriggerStore triggers{params};
  CTriggerStore::CInterval kept_axis;

  std::vector<QVSpecIntervalEntry> entries;
  std::vector<QClavis> quantities;
  std::vector<QIdx1> modes;
  std::vector<float> values;
};

}  // namespace

void RegisterQueries(const Files& files) {
  static const Fixture fixture(files.medium);
  RegisterQuestion("query/IndexRange", [](std::size_t i) {
    CQtSpecInterval::IndexInterval lines;
    fixture.interval.IndexRange(fixture.entries[i], lines, 1600, 0.125F, 1.0F);
    return lines;
  });
  RegisterQuestion("query/cell in the tables", [](std::size_t i) {
    std::int64_t cell = 0;
    fixture.triggers.cell(fixture.modes[i][0], trigger, axis, fixture.values[i], cell, false);
    return cell;
  });
  RegisterQuestion("query/cell on a kept axis", [](std::size_t i) {
    std::int64_t cell = 0;
    CTriggerStore::cell(fixture.kept_axis, axis, fixture.values[i], cell, false);
    return cell;
  });
  RegisterQuestion("query/FormatClavisText", [](std::size_t i) {
    return fixture.params.FormatClavisText(fixture.quantities[i],
                                           CQtParamInstance::show_id_if_no_name,
                                           CQtParamInstance::ElementMask().set());
  });
}

}  // namespace benchmarks
