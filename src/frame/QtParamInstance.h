// The handle through which every module reaches the parameter data. It is one pointer: copy it
// freely, make it on the stack for a single query.
//
// A query never fails loudly. An unknown id gives an empty text (never null) or -1, an unknown name
// -1; each family below says so where it differs. Before any load all queries answer as for unknown
// ids. Ids are 32-bit signed integers chosen by the data base; -1 is no value.
//
// Threads: after a load, constant queries may run on any number of threads. Loading, purging,
// clearing, AddVModeName, ShowIdsInDialogs(bool) and changes through the non-constant tables must
// not run beside them. One text is written by queries: see ApplicationSignalUnit.
#pragma once

#include <bitset>
#include <cstddef>
#include <map>
#include <utility>

#include "frame/QtParamDistillery.h"
#include "interfaces/Export.h"
#include "interfaces/text/Text.h"
#include "lake/Refusal.h"
#include "queries/Grex.h"
#include "spec/OrderInterpreter.h"

class CComboBox;
class CMeasuringUnit;
struct QVIpSvOfSpec;

class KESTRIN_API CQtParamInstance {
 public:
  // Null stands for the server's data base, which is made if this is its first use. Another one is
  // the host's own (QtParamDistillery.h) and must outlive the handle.
  explicit CQtParamInstance(CQtParamDistillery* store);
  CQtParamInstance() : CQtParamInstance(nullptr) {}

  // --- Load and life ------------------------------------------------------------------------

  // True after a load that succeeded, until the data base is cleared. A purge doesn't change it.
  bool Initialized() const;

  // Loads the candidate lake, CParameterLake::Lake(), which the host has filled; the lake isn't
  // changed and not read again. False if it is empty, if its version is refused (one log line), or
  // if a relative limit names an unknown parameter: then the tables are nevertheless replaced. Bad
  // lines are logged and don't count. Purge before loading another data base: the index of a name
  // table keeps what it had.
  bool ReadTablesFromCandidateLake();

  // Why the last load gave false, for programs and for people; no reason after one that gave true.
  // What became of the file tells CLake::last_refusal().
  const kestrin::Refusal& LastRefusal() const;

  // Writes the tables that are bound to a sea, which is <TAutoModeParam> alone, back to it.
  void WriteTablesToLocalSeas() const;

  // Erases the rows of all tables and the four names. What the last load derived stays.
  void PurgeTables();

  // Logs all tables and what is derived from them; of each all rows with limit 0, else one more
  // than the limit.
  void DumpTables(int limit) const;

  // --- The documents that belong to the data base -------------------------------------------

  // As the last load read them from the lines <QType><FBaseName>, <QType><FAliasName>,
  // <QCalib><FCalibFileName> and <QLearn><FLearnArcName>: what stands between the quotes, or the
  // first word. Empty without such a line, before a load and after a purge.
  CString BaseType() const;
  CString AliasType() const;
  CString CalibFileName() const;
  CString LearnFileName() const;

  // --- Tables -------------------------------------------------------------------------------
  // Containers of rows in the order of their keys, to search and to walk: the classes stand in
  // frame/TableList.h, by section. A reference shows every later load; rows and positions are good
  // until the next one.

  template <kestrin::tables::Word Section>
  using Table = kestrin::tables::TableOf<Section>;

  const auto& TypeNames() const { return In<L"<TAliasType>">(); }
  const auto& BenchNames() const { return In<L"<TAliasBench>">(); }
  const auto& Mode() const { return In<L"<TMode>">(); }
  const auto& Channel() const { return In<L"<TChannel>">(); }
  const auto& Location() const { return In<L"<TLocation>">(); }
  const auto& Instrument() const { return In<L"<TInstrument>">(); }
  const auto& InstrumentParam() const { return In<L"<TInstrumentParam>">(); }
  const auto& PhysMode() const { return In<L"<TPhysMode>">(); }
  const auto& ResamplingJob() const { return In<L"<TResamplingGroup>">(); }
  const auto& ResamplingSet() const { return In<L"<TProcessingUnit>">(); }
  const auto& SensorGroup() const { return In<L"<TSensorGroup>">(); }
  const auto& Trigger() const { return In<L"<TTrigger>">(); }
  const auto& ApplicationSignal() const { return In<L"<TApplicationSignal>">(); }
  const auto& SignalUnit() const { return In<L"<TSignalUnit>">(); }
  const auto& ModeProperty() const { return In<L"<TModeProperty>">(); }
  const auto& ModeTranslate() const { return In<L"<TModeTranslate>">(); }
  const auto& ChannelProperty() const { return In<L"<TChannelProperty>">(); }
  const auto& LocationProperty() const { return In<L"<TLocationProperty>">(); }
  const auto& SensorGroupList() const { return In<L"<TSensorGroupList>">(); }
  const auto& ResamplingParams() const { return In<L"<TResamplingM>">(); }
  const auto& AppSignalProperty() const { return In<L"<TAppSignalProperty>">(); }
  auto& AppSignalProperty() { return In<L"<TAppSignalProperty>">(); }
  const auto& SensorConfigName() const { return In<L"<TTpSensorConfig>">(); }
  const auto& SensorConfiguration() const { return In<L"<TTpSensorConfigProperty>">(); }
  const auto& SignalDispatch() const { return In<L"<TSignalDispatch>">(); }
  auto& SignalDispatch() { return In<L"<TSignalDispatch>">(); }
  const auto& TriggerParam() const { return In<L"<TTriggerParam>">(); }
  auto& TriggerParam() { return In<L"<TTriggerParam>">(); }
  const auto& AutoModeParams() const { return In<L"<TAutoModeParam>">(); }
  auto& AutoModeParams() { return In<L"<TAutoModeParam>">(); }
  const auto& AutoMode() const { return In<L"<TAutoMode>">(); }
  const auto& AutoModeSelector() const { return In<L"<TAutoModeSelector>">(); }
  const auto& IpParamAndStore() const { return In<L"<TIpParamAndStore>">(); }
  const auto& InstrumentProperty() const { return In<L"<TInstrumentProperty>">(); }
  const auto& IpCalcParameter() const { return In<L"<TIpCalcParameter>">(); }
  const auto& IpLearnParameter() const { return In<L"<TIpLearnParams>">(); }
  const auto& IpRunTest() const { return In<L"<TGrex11>">(); }
  const auto& LimSValue() const { return In<L"<TLimSValue>">(); }
  const auto& LimCValue() const { return In<L"<TLimCValue>">(); }
  const auto& IpPolygon() const { return In<L"<TIpPolygon>">(); }
  const auto& IpPolygonProperty() const { return In<L"<TIpPolygonProperty>">(); }
  const auto& LimArea() const { return In<L"<TLimArea>">(); }
  // Sorted by the keys as the file has them, into which the load then writes the instruments: with
  // more than one instrument the order may be broken. Walk it; find() can miss rows.
  const auto& RelativeLimit() const { return In<L"<TGrex15>">(); }
  const auto& ErrorCode() const { return In<L"<TErrorCode>">(); }
  auto& ErrorCode() { return In<L"<TErrorCode>">(); }
  const auto& ExternalError() const { return In<L"<TExternalError>">(); }
  const auto& SeverityProperty() const { return In<L"<TErrorGroup>">(); }
  auto& SeverityProperty() { return In<L"<TErrorGroup>">(); }
  const auto& ShadowGroupProperty() const { return In<L"<TShadowGroupProperty>">(); }
  const auto& RetypeDefinition() const { return In<L"<TRetype>">(); }
  const auto& ClavisUserNames() const { return In<L"<TClavisUserNames>">(); }
  const auto& LearnProcedures() const { return In<L"<TLearnProcedures>">(); }

  // The store itself, for those who describe or count all tables (TableCatalogue.h).
  const CQtParamDistillery& Store() const { return *store_; }

  // --- Names and ids ------------------------------------------------------------------------
  // ...Name(id): the name, good until the table is purged; empty for an unknown id.
  // ...Id(name): the id of the row with exactly this name, -1 for an unknown one. A name is cut to
  //              199 characters first.
  // IsValid...(id): whether the table holds the id.

  int ModeId(const wchar_t* name) const;
  bool IsValidMode(int id) const;
  const wchar_t* PhysModeName(int id) const;
  int PhysModeId(const wchar_t* name) const;
  bool IsValidPhysMode(int id) const;
  const wchar_t* ChannelName(int id) const;
  int ChannelId(const wchar_t* name) const;
  bool IsValidChannel(int id) const;
  const wchar_t* LocationName(int id) const;
  int LocationId(const wchar_t* name) const;
  bool IsValidLocation(int id) const;
  const wchar_t* InstrumentName(int id) const;
  int InstrumentId(const wchar_t* name) const;
  bool IsValidInstrument(int id) const;
  const wchar_t* ApplicationSignalName(int id) const;
  int ApplicationSignalId(const wchar_t* name) const;
  bool IsValidApplicationSignal(int id) const;
  const wchar_t* SensorGroupName(int id) const;
  int SensorGroupId(const wchar_t* name) const;
  const wchar_t* ResamplingJobName(int id) const;
  int ResamplingJobId(const wchar_t* name) const;
  const wchar_t* ResamplingSetName(int id) const;
  int ResamplingSetId(const wchar_t* name) const;
  const wchar_t* TypeAliasName(int id) const;
  int TypeAliasId(const wchar_t* name) const;
  const wchar_t* BenchAliasName(int id) const;
  int BenchAliasId(const wchar_t* name) const;

  const wchar_t* InstrumentParamName(int id) const;
  // Names are unique only within an instrument; the first such parameter in id order.
  int InstrumentParamId(const wchar_t* name, int instrument) const;

  const wchar_t* TriggerName(int id) const;
  // The first trigger of that name in id order.
  int TriggerId(const wchar_t* name) const;
  // The trigger of an instrument parameter, -1 if it has none.
  int TriggerId(int instrument_param) const;

  // By the element's number in a key, Clavis::qOrder: the name of an id. Any other number is a
  // fault of the caller; the text is then empty.
  const wchar_t* ClavisElementName(int element, int id) const;

  // The ids and names of an element, Clavis::Parameter excepted. Any other number is a fault of the
  // caller; the map of the test steps then comes back.
  const Table<L"<TMode>">& IdNameMap(int element) const;

  // The flags of an object, 0 for an unknown one.
  unsigned LocationPropertyFlag(int location) const;

  // The application signal that carries time, -1 if there is none: set by each load, for the whole
  // process.
  static int TimeSignalId();

  // Whether dialogs show ids beside names: a setting of the messages sea, the same for all handles.
  // False if the sea doesn't hold it.
  static bool ShowIdsInDialogs();
  static void ShowIdsInDialogs(bool show);

  // Fills a combo with the type aliases and returns their number. `selection`, or else the text
  // that the combo showed, is selected again if it is among them; in a combo that would stay empty
  // it becomes the one entry.
  int FillTypeNameCombo(CComboBox& combo, const wchar_t* selection) const;

  // The unit of a signal; the dimensionless one for an unknown signal and for a text that is no
  // unit. Where the signal's row names a common unit by code, the unit's text goes into the row's
  // unit_text; a load leaves there what the file has. What makes names of virtual modes does the
  // same for the signals that they show. All these calls may run beside each other and beside
  // constant queries, but not beside a host that reads unit_text in the table itself, dumps it or
  // copies its rows.
  CMeasuringUnit ApplicationSignalUnit(int signal);

  // --- Test steps and virtual test steps ----------------------------------------------------
  // The id of a test step, where it is above 0:
  //
  //   bits 0 to 10    the base mode, 0 to 2047: what the tables know
  //   bits 11 to 30   the extension of a virtual mode, 0 for a base mode: a digit of 6 bits for
  //                   each row of <TAutoModeParam>, the first row's lowest. A digit is the index
  //                   of a band of that signal plus 1, 0 for no band. There is room for three
  //                   digits and two bits of a fourth.
  //
  // Any other id isn't virtual and has no parts: it is its own base and its own extension. The
  // static operations need no data base and may run on any thread at any time.

  static bool IsVirtualMode(int id);
  static int VirtMode2BaseMode(int id);
  static int VirtModeExtension(int id);

  // The id with that base and extension; `base` itself if that is negative. A base above 2047 runs
  // into the extension; an extension of 2^20 or more makes an id that isn't virtual.
  static int VirtModeGenerateId(int base, int extension);

  // The digit of the row at that place of <TAutoModeParam>, from 0; 0 where the id has no room.
  static int VirtModeDigit(int id, std::size_t row);

  // The extension for one band index, -1 to 62, for each row of <TAutoModeParam> in key order.
  // Modulo 2^32: whether the digits fit into an id is the caller's to see. 0 for null.
  int VirtModeExtension(const int* indices) const;

  // The centre of a band, rounded to a whole number, in the unit of the signal.
  static float VirtModePosition(const QVAutoModeParams& params, unsigned index);

  // What a name tells of one signal: position, unit, and if the row has a direction "--Z" or, if
  // not `positive`, "--S". `row` shows a row of AutoModeParams(). Precision is the number of
  // significant digits, 0 stands for 6. Empty if the signal has no properties.
  CString VirtModeNameFragment(Table<L"<TAutoModeParam>">::const_iterator row, bool positive,
                               float position, unsigned precision) const;

  // The name made for a virtual mode: the physical mode and a fragment for each signal, or if
  // <TAutoModeParam> is empty the base mode and the extension. Empty for an id that isn't virtual
  // or has no physical mode. A digit of 0 for a row shows as the position of no band, which means
  // nothing: VirtModeDigit tells.
  CString VirtModeName(int id) const;

  // The name to show for any test step: the one in <TMode>, good until the table is purged, or
  // else the name made for a virtual mode, cut to 499 characters. A made name is good on the
  // calling thread alone, until that thread's next call that makes one or until it ends. Key texts
  // and ClavisElementName make names, too.
  const wchar_t* ModeName(int id) const;

  // Gives a virtual mode a name of its own, a row of <TMode>, until the tables are purged or read
  // again. A name is cut to 199 characters. False, with nothing changed, if the id isn't virtual
  // or has a row.
  bool AddVModeName(int id, const wchar_t* name);

  // The physical mode of a test step, virtual or not; -1 if it has none.
  int PhysModeId(int id) const;

  // Whether selections leave the test step out. Asks for the id itself: no virtual mode is hidden,
  // even if its base is.
  bool ModeIsHidden(int id) const;

  // Whether the flags of a test step, virtual or not, and `flag` have a bit in common; false for an
  // unknown one.
  bool ModeIsOfType(int id, QVModeProps::modeFlag flag) const;
  static bool ModeIsOfType(const QVModeProps& props, QVModeProps::modeFlag flag);

  // --- Kinds of instruments -----------------------------------------------------------------
  // The static operations answer from a table of the suite's instruments that is built in. They
  // need no data base, ask for no name, and may run on any thread at any time.

  // 1 single value, 2 and 5 track, 3 spectrum, 6 two-dimensional data; 4 and -1 have no query of
  // their own. 0 for an instrument that the suite doesn't know.
  static int ResultType(int instrument);
  static bool IsSingleValueInstrument(int instrument);
  static bool IsTrackInstrument(int instrument);
  static bool IsSpectrumInstrument(int instrument);
  static bool Is2dDataInstrument(int instrument);

  // The instrument that gives the same result over time, and back; -1 if there is none.
  static int ScalarInstrumentToTrackInstrument(int instrument);
  static int TrackInstrumentToScalarInstrument(int instrument);

  // The instrument of a parameter, or -1.
  int InstrumentParameterToInstrument(int parameter) const;

  // --- Key texts ----------------------------------------------------------------------------

  // When an element's id stands behind its name, as in "Main [3]". Any other value is a fault of
  // the caller and shows no id.
  enum show_id_t : int {
    show_id_never = 0,
    show_id_always = 1,
    show_id_if_no_name = 2,
  };

  using ElementMask = std::bitset<Clavis::element_count>;  // bit i: element i of Clavis::qOrder

  // The chosen elements in key order with " / " between them; "(Nil)" for -1. Without `show` the
  // ids stand there always if ShowIdsInDialogs(), or else where there is no name.
  CString FormatClavisText(const CClavis& key, show_id_t show, ElementMask mask) const;
  CString FormatClavisText(const QClavis& key, show_id_t show, ElementMask mask) const;
  CString FormatClavisText(const CClavis& key, ElementMask mask) const;
  CString FormatClavisText(const QClavis& key, ElementMask mask) const;

  // Test step, instrument and parameter, object and channel, sensor, with a blank, the separator
  // and a blank between them; the first 499 characters of that. Never an id; "(Nil)" for a test
  // step or a sensor of -1.
  CString FormatClavisTextNice(const CClavis& key, const wchar_t* separator) const;
  CString FormatClavisTextNice(const QClavis& key, const wchar_t* separator) const;

  // Writes `text` and gives its characters. The name of the instrument, and of the parameter if
  // the instrument has several. Instrument -1 stands for the parameter's own.
  const wchar_t* FormatInstrParamText(CString& text, int instrument, int parameter) const;
  const wchar_t* FormatInstrParamText(CString& text, const QClavis& key) const;

  // Writes `text` and gives its characters. "object channel" for a sync channel, "channel
  // (object)" for a mix channel, "object (channel)" for the others. Where no second channel has
  // the same resampling type, a mix channel stands alone; of the others the object alone, or the
  // channel alone if the object has properties without the flag 4.
  const wchar_t* FormatLocaChanText(CString& text, int location, int channel) const;
  const wchar_t* FormatLocaChanText(CString& text, const QClavis& key) const;

  // --- Channels -----------------------------------------------------------------------------
  // A channel may be derived from another one, its parent, which can depend on the test step. The
  // channel at the end of this chain is its base channel. Virtual modes count as their base modes.
  //
  // A chain that closes on itself has no end. It stops where it would come to a channel for the
  // second time: the base channel is then the last one before that step. Each load logs one line
  // for each closed chain.
  //
  //   a -> b -> c -> b   from a: base c    from b: base c    from c: base b

  // How a channel is resampled: a set of these bits.
  enum channelFlag : unsigned {
    channel_sync = 1,  // over the revolutions of one rotor
    channel_mix = 2,   // over those of a speed source, for all rotors that it drives
    channel_fix = 4,   // over time
  };

  // The direct parent, -1 if there is none.
  int ParentChannel(int mode, int channel) const;

  // The channel itself if it has no parent. 0, and not -1, for an unknown test step or channel.
  int BaseChannel(int mode, int channel) const;

  // The bits of all channels of the chain together; 0 for an unknown test step or channel.
  int ChannelFlags(int mode, int channel) const;

  // The channel's own bits, with no regard to its parents; 0 or false for an unknown channel.
  unsigned ChannelResamplingType(int channel) const;
  bool ChannelIsSync(int channel) const;
  bool ChannelIsMix(int channel) const;
  bool ChannelIsFix(int channel) const;

  // --- Rotors, speed sources and orders -----------------------------------------------------
  // Order sources and gears sit on rotors, and a speed source tells how fast a rotor turns. Their
  // ids are one space: an order source that no table puts on a rotor is the rotor of its number, a
  // gear that no table translates is the physical gear of its number. Virtual modes count as their
  // base modes, except in RotorSpeedSource. -1 stands for none, given or found.
  //
  //   test step --<TModeProperty>--> physical mode p
  //
  //   order source --(p) <TOrderSource2Rotor>--> rotor --(p) <TRotorSpeedSource>--> speed source
  //        |                                       |                                   |
  //        | (p) <TVirtual2PhysGear>               | (p) <TRotorSpeed>  <TSpeedSource> |
  //        v                                       v                                   v
  //   physical gear --<TBaseOrder>--> order      speed                               signal

  // The gear of the machine for which a gear stands in the test step's physical mode; -1 for an
  // unknown test step.
  int PhysicalGear(int mode, int gear) const;

  // The rotor of an order source. 0 if an argument is -1; -1 for an unknown test step.
  int OrderSource2Rotor(int mode, int source) const;

  // The speed source of the order source's rotor, and the application signal that carries that
  // speed; -1 if there is none. RotorSpeedSource knows no virtual modes and gives -1 for them.
  int RotorSpeedSource(int mode, int source) const;
  int RotorSpeedSourceAppId(int mode, int source) const;

  // The application signal that carries the speed of a rotor, -1 if there is none.
  int SpeedInfoOfRotor(int mode, int rotor) const;

  // The orders of a gear, or of another order source, on the axis of its own rotor: for a gear
  // wheel its teeth. 0 if there are none.
  float BaseOrder(int mode, int gear) const;

  // How often the rotor of `other` turns while that of `generating` turns once, negative if it
  // turns the other way round. 0 if the speed of either is unknown or `generating` stands still.
  float FrequencyRatioToGeneratingRotor(int mode, int generating, int other) const;

  // The same for an order source against the speed source of its rotor; 0 if it has none. Times the
  // base order it is the order of the source on the speed source's axis.
  float RotorFrequencyRelativeToSpeedSourceRotor(int mode, int source) const;

  // First and end of the order sources that a channel sees: of this rotor for a sync channel, of
  // all rotors of this rotor's speed source for a mix channel, none for others. A row's key is
  // physical mode, speed source, rotor and a running number, its value the order source. Good until
  // the next load; a purge leaves it.
  using OrderSourceMap = CUniqueTreeMap<QIdx4, QVRefIdx>;
  using OrderSources = std::pair<OrderSourceMap::const_iterator, OrderSourceMap::const_iterator>;
  OrderSources OrderSourceRange(int mode, int channel, int rotor) const;

  // --- Spectrum intervals -------------------------------------------------------------------
  // By instrument parameter, as the last load read its order definition (QtSpecIntervalStore.h).
  // CQtSpecInterval turns them into spectral lines.

  // Of each parameter that has them: how the interval is read, definition, base order.
  using SpecRecordMap = std::map<QIdx1, QVIpSvOfSpec>;
  const SpecRecordMap& IpSvOfSpec() const;

  // The order definition, good until the tables are purged or loaded; null without one.
  const wchar_t* SpecIntervalDefinition(unsigned id) const;

  // First and end of a parameter's intervals, in the order of the definition; equal if it has none.
  // A row's key is the parameter and the index of the interval's lower position: 0, 2, 4. Good
  // until the next load.
  using SpecIntervalMap = std::map<QIdx2, QVSpecIntervalEntry>;
  using SpecIntervals = std::pair<SpecIntervalMap::const_iterator, SpecIntervalMap::const_iterator>;
  SpecIntervals SpecIntervalRange(unsigned id) const;

  // --- Track polygons -----------------------------------------------------------------------
  // A key of <TIpParamAndStore> without an entry has no track polygon. The points of a polygon are
  // the entries from lower_bound({polygon_id, 0}) as long as the first number is the polygon's:
  // there may be none. The numbers count from 0, for a stored polygon in ascending x, for one made
  // of two points from its start to its end. References stay good over loads, positions don't.

  const std::map<QClavis, CVIpSvTrackPolygon>& IpTrackPolygon() const;

  // By polygon id and point number.
  const std::map<std::pair<int, int>, CVPoint>& IpPolygonValues() const;

 private:
  template <kestrin::tables::Word Section>
  Table<Section>& In() const {
    return store_->Table<Section>();
  }

  CQtParamDistillery* store_;
};
