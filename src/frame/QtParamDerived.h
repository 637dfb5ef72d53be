// What a load computes from the tables and the tables don't hold directly. Made once with the store
// and built anew by each load; clearing or purging the tables leaves it as the last load made it.
#pragma once

#include "frame/DataSource.h"
#include "queries/Grex.h"
#include "queries/QtChannelInfo.h"
#include "queries/QtModeInfo.h"
#include "queries/QtRotorInfo.h"
#include "queries/QtSpeedInfo.h"
#include "spec/QtSpecIntervalStore.h"

class CQtParamStore;

class CQtParamDerived {
 public:
  explicit CQtParamDerived(CQtParamStore& param_store);
  CQtParamDerived(const CQtParamDerived&) = delete;
  CQtParamDerived& operator=(const CQtParamDerived&) = delete;

  // Runs inside a load, behind the reading of the tables.
  void Build();

  // Writes into each key of <TGrex15> the instrument of its parameter. False at the first row whose
  // parameter is not in <TInstrumentParam>: the rows before it are done, those behind it untouched.
  bool CompleteRelativeLimitKeys();

  // Logs the derived tables; all rows with limit 0.
  void Dump(int limit) const;

  // The trigger of an instrument parameter, or -1.
  int TriggerId(int instrument_param) const;

  const CQtSpeedInfo& SpeedInfo() const { return speed_info; }
  const CQtSpecIntervalStore& SpecIntervals() const { return spec_intervals; }
  const CQtChannelInfo& ChannelInfo() const { return channel_info; }
  const CQtRotorInfo& RotorInfo() const { return rotor_info; }
  const CQtModeInfo& ModeInfo() const { return mode_info; }
  const CGrexInfo& GrexInfo() const { return grex_info; }

 private:
  void ExpandResampling();

  CQtParamStore* store;
  // Filled by Build, so that reading it from a query changes nothing.
  mutable DataSource::CCandidateSeaDataSource<int> trigger_ids;
  CQtSpeedInfo speed_info;
  CQtSpecIntervalStore spec_intervals;
  CQtChannelInfo channel_info;
  CQtRotorInfo rotor_info;
  CQtModeInfo mode_info;
  CGrexInfo grex_info;
};
