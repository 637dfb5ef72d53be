// Which order sources a channel sees. A sync channel is resampled over the revolutions of one rotor
// and sees what sits on that rotor; a mix channel sees every rotor that the same speed source
// drives. Both are one stretch of a table that each load derives:
//
//   <PiRotor2OrderSources>   physical mode, speed source, rotor, running number | order source
//
// The running number counts the rows of the whole table from 0 as they are made, so that a rotor
// can carry any number of order sources, in the order of <TOrderSource2Rotor>.
#pragma once

#include <utility>

#include "catalogue/NameRows.h"
#include "tables/MapContainers.h"
#include "tables/QParamBaseTable.h"

class CQtChannelInfo;
class CQtParamStore;
class CQtSpeedInfo;

using CRotor2OrderSources = CUniqueTreeMap<QIdx4, QVRefIdx>;

class CQtRotorInfo {
 public:
  using Range = std::pair<CRotor2OrderSources::const_iterator, CRotor2OrderSources::const_iterator>;

  CQtRotorInfo(const CQtParamStore& param_store, const CQtSpeedInfo& speeds,
               const CQtChannelInfo& channels);

  // Derives the table anew. An order source whose physical gear has no base order is left out, and
  // a line of the log says so.
  void Build();

  // The derived table.
  const CQParamTypedTable<CRotor2OrderSources>& OrderSources() const { return order_sources_; }

  // The order sources that the channel sees of this rotor, or by way of it; the mode is a base
  // mode. Both at the table's end if the channel is neither sync nor mix.
  Range OrderSourceRange(int mode, int channel, int rotor) const;

 private:
  const CQtParamStore* store_;
  const CQtSpeedInfo* speed_info_;
  const CQtChannelInfo* channel_info_;
  CQParamTypedTable<CRotor2OrderSources> order_sources_;
};
