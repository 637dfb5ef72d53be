// The tables of the data base, all 56, in one list.
//
// The list's order is the order in which the store makes its tables. Each entry tells
//
//   the place at the table manager, from 1: the order of reading, writing and dumping
//   the section's name, by which the table is also found here: TableOf<L"<TMode>">
//   the class of the table
//   the operation of CQtParamInstance that hands the table out; empty where there is none
//   the names of the key's fields, which depend on the table (a row's fields name themselves)
//
// The store's members, their registration and the catalogue for people (TableCatalogue.h) follow
// from it. An accessor of the handle is one line there, which finds its table here by the section.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "catalogue/ErrorRows.h"
#include "catalogue/IpCalcParameter.h"
#include "catalogue/LearnRows.h"
#include "catalogue/LimitRows.h"
#include "catalogue/NameRows.h"
#include "catalogue/PolygonRows.h"
#include "catalogue/SignalRows.h"
#include "catalogue/TriggerRows.h"
#include "keys/IndexRecords.h"
#include "tables/QParamBaseTable.h"

namespace kestrin::tables {

// A text as a template argument.
template <std::size_t n>
struct Word {
  wchar_t text[n] = {};
  consteval Word(const wchar_t (&characters)[n]) { std::copy_n(characters, n, text); }
};

template <std::size_t n, std::size_t m>
constexpr bool operator==(const Word<n>& a, const Word<m>& b) {
  return std::equal(a.text, a.text + n, b.text, b.text + m);
}

template <int ReadingPlace, Word Section, class TableClass, Word Accessor, Word KeyFields>
struct TableEntry {
  using Table = TableClass;
  static constexpr int reading_place = ReadingPlace;
  static constexpr auto section = Section;
  static constexpr auto accessor = Accessor;
  static constexpr auto key_fields = KeyFields;  // names with a blank between each two
};

template <class... Entry>
struct TypeList {
  static constexpr std::size_t size = sizeof...(Entry);

  // Calls f with each entry, in the order of the list.
  template <class F>
  static constexpr void ForEach(F f) {
    (f(Entry()), ...);
  }
};

template <class K, class V>
using Sorted = CQParamSeaTypedTable<CDbUniqueMap<K, V>>;
template <class K, class V>
using Tree = CQParamSeaTypedTable<CUniqueTreeMap<K, V>>;
template <class K, class V>
using Multi = CQParamSeaTypedTable<CDbMultiMap<K, V>>;
using Names = CDynNameIdTable;

inline constexpr Word clavis = L"mode instrument channel location parameter sensor";

// clang-format off
using All = TypeList<
    TableEntry<13, L"<TAliasType>", Names, L"TypeNames", L"type">,
    TableEntry<14, L"<TAliasBench>", Names, L"BenchNames", L"bench">,
    TableEntry<1, L"<TMode>", Names, L"Mode", L"mode">,
    TableEntry<2, L"<TChannel>", Names, L"Channel", L"channel">,
    TableEntry<3, L"<TLocation>", Names, L"Location", L"location">,
    TableEntry<4, L"<TInstrument>", Names, L"Instrument", L"instrument">,
    TableEntry<5, L"<TInstrumentParam>", Sorted<QIdx1, QVInstrumentParam>, L"InstrumentParam", L"parameter">,
    TableEntry<6, L"<TPhysMode>", Names, L"PhysMode", L"phys_mode">,
    TableEntry<7, L"<TResamplingGroup>", Names, L"ResamplingJob", L"job">,
    TableEntry<8, L"<TProcessingUnit>", Names, L"ResamplingSet", L"set">,
    TableEntry<9, L"<TSensorGroup>", Names, L"SensorGroup", L"sensor_group">,
    TableEntry<10, L"<TTrigger>", Sorted<QIdx1, QVTrigger>, L"Trigger", L"trigger">,
    TableEntry<11, L"<TApplicationSignal>", Names, L"ApplicationSignal", L"signal">,
    TableEntry<12, L"<TSignalUnit>", Names, L"SignalUnit", L"unit">,
    TableEntry<15, L"<TModeProperty>", Sorted<QIdx1, QVModeProps>, L"ModeProperty", L"mode">,
    TableEntry<16, L"<TModeTranslate>", Sorted<QIdxName, QIdx1>, L"ModeTranslate", L"name">,
    TableEntry<17, L"<TChannelProperty>", Sorted<QIdx1, QVChannelProperty>, L"ChannelProperty", L"channel">,
    TableEntry<18, L"<TChannelInheritance>", Sorted<QIdx2, QVRefIdx>, L"", L"channel mode">,
    TableEntry<19, L"<TLocationProperty>", Sorted<QIdx1, QVLocationProperty>, L"LocationProperty", L"location">,
    TableEntry<20, L"<TRotorSpeed>", Sorted<QIdx2, QVRotorSpeeds>, L"", L"phys_mode rotor">,
    TableEntry<21, L"<TBaseOrder>", Sorted<QIdx1, QVBaseOrder>, L"", L"phys_gear">,
    TableEntry<22, L"<TVirtual2PhysGear>", Sorted<QIdx2, QVRefIdx>, L"", L"phys_mode gear">,
    TableEntry<23, L"<TSpeedSource>", Sorted<QIdx1, QVRefIdx>, L"", L"speed_source">,
    TableEntry<24, L"<TRotorSpeedSource>", Sorted<QIdx2, QVRefIdx>, L"", L"phys_mode rotor">,
    TableEntry<25, L"<TOrderSource2Rotor>", Sorted<QIdx2, QVRefIdx>, L"", L"order_source phys_mode">,
    TableEntry<26, L"<TSensorGroupList>", Multi<QIdx1, QVSensorGroupList>, L"SensorGroupList", L"sensor_group">,
    TableEntry<27, L"<TResampling>", Sorted<QIdx2, QVResampling>, L"", L"key_1 phys_mode">,
    TableEntry<28, L"<TResamplingM>", Sorted<QIdx2, QVResampling>, L"ResamplingParams", L"key_1 mode">,
    TableEntry<29, L"<TAppSignalProperty>", Sorted<QIdx1, QVAppSignalProperty>, L"AppSignalProperty", L"signal">,
    TableEntry<30, L"<TTpSensorConfig>", Names, L"SensorConfigName", L"sensor_config">,
    TableEntry<31, L"<TTpSensorConfigProperty>", Sorted<QIdx3, QVSensorConfiguration>, L"SensorConfiguration", L"key_1 key_2 key_3">,
    TableEntry<32, L"<TSignalDispatch>", Sorted<QIdx1, QVSignalDispatch>, L"SignalDispatch", L"key_1">,
    TableEntry<33, L"<TTriggerParam>", Sorted<QIdx3, QVTriggerParams>, L"TriggerParam", L"mode trigger dimension">,
    TableEntry<34, L"<TAutoModeParam>", Tree<QIdx1, QVAutoModeParams>, L"AutoModeParams", L"signal">,
    TableEntry<35, L"<TAutoMode>", Sorted<QIdx1, QVAutoMode>, L"AutoMode", L"key_1">,
    TableEntry<36, L"<TAutoModeSelector>", Multi<QIdx1, QVAutoModeSelector>, L"AutoModeSelector", L"key_1">,
    TableEntry<37, L"<TIpParamAndStore>", Sorted<QClavis, QVIpParamAndStore>, L"IpParamAndStore", clavis>,
    TableEntry<38, L"<TInstrumentProperty>", Sorted<QIdx1, QVInstrumentProperty>, L"InstrumentProperty", L"instrument">,
    TableEntry<39, L"<TIpCalcParameter>", Sorted<QIdx2, QVIpCalcParameter>, L"IpCalcParameter", L"parameter number">,
    TableEntry<40, L"<TGrex10001>", Sorted<QClavis, QVIpSvTrackPolygon>, L"", clavis>,
    TableEntry<56, L"<TIpLearnParams>", Sorted<QClavis, QVIpLearnParameter>, L"IpLearnParameter", clavis>,
    TableEntry<41, L"<TGrex11>", Sorted<QClavis, QVIpRunTest>, L"IpRunTest", clavis>,
    TableEntry<42, L"<TLimSValue>", Sorted<QClavis, QVLimSValue>, L"LimSValue", clavis>,
    TableEntry<43, L"<TLimCValue>", Sorted<QClavis, QVLimCValue>, L"LimCValue", clavis>,
    TableEntry<44, L"<TIpPolygon>", Sorted<QIdx1, QVClassIdName>, L"IpPolygon", L"polygon">,
    TableEntry<45, L"<TIpPolygonValue>", Sorted<QIdxIF, QVIpY>, L"", L"polygon x">,
    TableEntry<46, L"<TIpPolygonProperty>", Sorted<QIdx1, QVIpPolygonProperty>, L"IpPolygonProperty", L"polygon">,
    TableEntry<47, L"<TLimArea>", Sorted<QClavis, QVLimArea>, L"LimArea", clavis>,
    TableEntry<48, L"<TGrex15>", Sorted<QClavis, QVRelativeLimit>, L"RelativeLimit", clavis>,
    TableEntry<49, L"<TErrorCode>", Sorted<QIdx1, QVErrorCode>, L"ErrorCode", L"error">,
    TableEntry<50, L"<TExternalError>", Sorted<QIdx1, QVExternalError>, L"ExternalError", L"error">,
    TableEntry<51, L"<TErrorGroup>", Sorted<QIdx1, QVErrorGroup>, L"SeverityProperty", L"severity">,
    TableEntry<52, L"<TShadowGroupProperty>", Sorted<QIdx1, QVShadowGroupProperty>, L"ShadowGroupProperty", L"shadow_group">,
    TableEntry<53, L"<TRetype>", Sorted<QIdx1, QVRefIdx>, L"RetypeDefinition", L"type">,
    TableEntry<54, L"<TClavisUserNames>", Sorted<QIdx5, QVClavisUserNames>, L"ClavisUserNames", L"instrument channel sensor location parameter">,
    TableEntry<55, L"<TLearnProcedures>", Sorted<QIdx1, QVLearnProcedures>, L"LearnProcedures", L"procedure">>;
// clang-format on

// The one table that falls back on the application sea and is written back to it.
inline constexpr Word sea_table = L"<TAutoModeParam>";

// A table as a member of the store.
template <Word Section, class Entry>
struct Slot {
  typename Entry::Table table;

  explicit Slot(CResourceSea* application_sea);
};

template <class Entries>
struct Members;

// The tables by value: bases are made in the order of the list and go in reverse.
template <class... Entry>
struct Members<TypeList<Entry...>> : Slot<Entry::section, Entry>... {
  explicit Members(CResourceSea* application_sea)
      : Slot<Entry::section, Entry>(application_sea)... {}
};

// The table of a section among the members, of which one base alone has that section. A name that
// is not in the list doesn't compile.
template <Word Section, class Entry>
typename Entry::Table& TableIn(Slot<Section, Entry>& slot) {
  return slot.table;
}
template <Word Section, class Entry>
const typename Entry::Table& TableIn(const Slot<Section, Entry>& slot) {
  return slot.table;
}

template <Word Section>
using TableOf = std::remove_reference_t<decltype(TableIn<Section>(std::declval<Members<All>&>()))>;

}  // namespace kestrin::tables
