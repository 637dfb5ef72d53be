// Track polygons, as the load has laid them out.

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "queries/Grex.h"

const std::map<QClavis, CVIpSvTrackPolygon>& CQtParamInstance::IpTrackPolygon() const {
  return store_->Derived().GrexInfo().IpTrackPolygon;
}

const std::map<std::pair<int, int>, CVPoint>& CQtParamInstance::IpPolygonValues() const {
  return store_->Derived().GrexInfo().IpPolygonValues;
}
