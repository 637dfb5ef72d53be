// Which track polygon applies to which measured quantity, and the points of all polygons.
//
// "Grex" is the suite's word for a table over whole keys that has a number in its section's name:
// <TGrex10001>, <TGrex11>, <TGrex15>.
//
// <TIpParamAndStore> lists the measured quantities by key. <TGrex10001> gives track polygons by
// keys in which -1 stands for any value; in a listed key, too, -1 matches any value. Each listed
// key takes the first row, in table order, that matches it. A row either names a polygon that is
// stored in <TIpPolygonValue>, or it holds two points, of which every key that it matches gets a
// polygon of its own.
//
// Polygons of both sorts share one range of ids: the made ones come behind the highest stored id,
// or from 0 if none is stored, in the order of the keys. If the ids end there, made polygons take
// those that are free from 0 up.
//
// Init must not run beside readers. Between loads nothing changes, and any thread may read.
#pragma once

#include <map>
#include <utility>

#include "keys/IndexRecords.h"

class CQtParamStore;
struct QVIpSvTrackPolygon;

// The track polygon of a measured quantity. What track_a and track_c mean is up to the programs
// that load the library. A polygon_id without points, such as -1, is possible.
struct CVIpSvTrackPolygon {
  int track_a = 0;
  int track_c = -1;
  int polygon_id = -1;

  friend bool operator==(const CVIpSvTrackPolygon&, const CVIpSvTrackPolygon&) = default;
};

// A point of a polygon.
struct CVPoint {
  float x = 0.0F;
  float y = 0.0F;

  friend bool operator==(const CVPoint&, const CVPoint&) = default;
};

class CGrexInfo {
 public:
  using TrackPolygons = std::map<QClavis, CVIpSvTrackPolygon>;
  using PolygonValues = std::map<std::pair<int, int>, CVPoint>;

  // The store must outlive this.
  explicit CGrexInfo(const CQtParamStore& param_store) : store_(&param_store) {}

  // Replaces both maps by what the tables hold. Logs a line for each further row that matches a
  // key: such a row has no say, but if it holds two points, the polygon made of them stays.
  void Init();

 private:
  void LayOutStoredPolygons();
  void ExpandWildcards();
  CVIpSvTrackPolygon TakeRow(const QVIpSvTrackPolygon& row, int& free_id);
  int FreeIdAfter(int id) const;

  const CQtParamStore* store_;

 public:
  TrackPolygons IpTrackPolygon;   // by the key as it is listed
  PolygonValues IpPolygonValues;  // by polygon id and point number, 0 and up
};
