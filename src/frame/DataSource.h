// Views on one number of the calculation parameters: for each instrument parameter that has it, its
// value. A view fills itself from <TIpCalcParameter> on its first use and keeps what it found until
// it is reset. The load does the first use, so that queries only read.
#pragma once

#include <map>

#include "interfaces/Export.h"

class CQtParamStore;

namespace DataSource {

template <class T>
class CDataSourceBase {
 public:
  virtual ~CDataSourceBase() = default;
  virtual bool Read(T& value) = 0;

 protected:
  CDataSourceBase() = default;
  CDataSourceBase(const CDataSourceBase&) = default;
  CDataSourceBase& operator=(const CDataSourceBase&) = default;

  bool loaded = false;
};

// T is int (the number at the start of the text, 0 if there is none) or const wchar_t* (the text
// itself, good until the table changes).
template <class T>
class KESTRIN_API CCandidateSeaDataSource : public CDataSourceBase<T> {
 public:
  using Values = std::map<int, T>;  // by instrument parameter

  static constexpr int no_filter = -1;

  // Of the server's data base. With a filter only parameters of that instrument are taken.
  explicit CCandidateSeaDataSource(int calc_parameter, int filter = no_filter);

  // Of another one, which must outlive the view.
  CCandidateSeaDataSource(const CQtParamStore& source_store, int calc_parameter,
                          int filter = no_filter)
      : store_(&source_store), number_(calc_parameter), instrument_filter_(filter) {}

  bool Read(T& value) override { return Read(value, current_id_); }

  // False if this call loads the view and meets a row of a parameter that <TInstrumentParam>
  // doesn't have, or if the parameter has no such value; then value stays.
  bool Read(T& value, int id);

  typename Values::const_iterator begin() {
    if (!this->loaded) Load();
    return values_.begin();
  }
  typename Values::const_iterator end() const { return values_.end(); }

  void Reset() {
    values_.clear();
    this->loaded = false;
  }

 private:
  bool Load();

  const CQtParamStore* store_;
  int number_;
  int current_id_ = -1;
  int instrument_filter_;
  Values values_;
};

extern template class CCandidateSeaDataSource<int>;
extern template class CCandidateSeaDataSource<const wchar_t*>;

}  // namespace DataSource
