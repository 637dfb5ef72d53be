// The queries of the handle, one declaration each. Not here are those that fill windows, write seas
// or change the whole data base; those that answer with rows stand in the package's Python.
#include <list>

#include "Query.h"

namespace kestrin::python {

namespace {

constexpr const char* kinds[] = {"mode",     "instrument", "channel",
                                 "location", "parameter",  "sensor"};

py::object NumPy(const char* name) { return py::module_::import("numpy").attr(name); }

bool IsScalar(py::handle given) {
  if (PyBool_Check(given.ptr()) != 0) return false;
  return PyLong_Check(given.ptr()) != 0 || py::isinstance(given, NumPy("integer"));
}

// One id or name.
long long ToId(const DataBase& data, const Argument& argument, py::handle given, long long high) {
  if (py::isinstance<py::str>(given)) return data.IdOf(argument.kind, ToWide(given));
  if (IsScalar(given)) {
    return ToInteger(given, std::numeric_limits<int>::min(), high, argument.name);
  }
  const bool has_names = HomeOfNames(argument.kind).first != nullptr;
  Raise(PyExc_TypeError, std::string(argument.name) + ": an id " + (has_names ? "or a name " : "") +
                             "is needed, not " + Py_TYPE(given.ptr())->tp_name);
}

}  // namespace

Ids ToIds(const DataBase& data, const Argument& argument, py::handle given, long long high) {
  const auto one = [&](py::handle value) { return ToId(data, argument, value, high); };
  if (py::isinstance<py::str>(given) || IsScalar(given) || !py::hasattr(given, "__len__")) {
    Ids ids(std::vector<py::ssize_t>{});
    *ids.mutable_data() = one(given);
    return ids;
  }
  auto array = py::array(NumPy("asarray")(given));
  // numpy would make texts of ids beside names.
  if (array.dtype().kind() == 'U') array = NumPy("asarray")(given, "O");
  const char kind = array.dtype().kind();
  if (array.size() > 0 && (kind == 'i' || kind == 'u')) {
    one(array.attr("min")());
    one(array.attr("max")());
  } else if (array.size() > 0) {
    Ids ids(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()));
    auto* place = ids.mutable_data();
    for (const py::handle value : array.attr("ravel")().attr("tolist")()) *place++ = one(value);
    return ids;
  }
  return {array};
}

Ids ToKey(const DataBase& data, py::handle given) {
  const auto ids = py::reinterpret_steal<py::tuple>(PySequence_Tuple(given.ptr()));
  if (!ids) throw py::error_already_set();
  if (ids.size() != std::size(kinds)) {
    Raise(PyExc_ValueError, "a key has six ids, not " + std::to_string(ids.size()));
  }
  Ids key(static_cast<py::ssize_t>(ids.size()));
  for (std::size_t i = 0; i < ids.size(); ++i) {
    key.mutable_data()[i] =
        ToId(data, {kinds[i], static_cast<IdKind>(i)}, ids[i], std::numeric_limits<int>::max());
  }
  return key;
}

std::optional<std::vector<py::ssize_t>> Broadcast(std::span<Ids* const> ids) {
  bool is_one = true;
  py::tuple arrays(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    is_one = is_one && ids[i]->ndim() == 0;
    arrays[i] = *ids[i];
  }
  if (is_one) return std::nullopt;
  const py::list wide(NumPy("broadcast_arrays")(*arrays));
  for (std::size_t i = 0; i < ids.size(); ++i) *ids[i] = Ids(py::object(wide[i]));
  return std::vector<py::ssize_t>(ids[0]->shape(), ids[0]->shape() + ids[0]->ndim());
}

void AddQueries(py::module_& module, DataBaseClass& type) {
  using P = CQtParamInstance;
  using Name = const wchar_t*;

  constexpr Argument mode{"mode", IdKind::mode};
  constexpr Argument instrument{"instrument", IdKind::instrument};
  constexpr Argument channel{"channel", IdKind::channel};
  constexpr Argument location{"location", IdKind::location};
  constexpr Argument parameter{"parameter", IdKind::parameter};
  constexpr Argument signal{"signal", IdKind::sensor};
  constexpr Argument phys_mode{"phys_mode", IdKind::phys_mode};
  constexpr Argument trigger{"trigger", IdKind::trigger};
  constexpr Argument sensor_group{"sensor_group", IdKind::sensor_group};
  constexpr Argument type_alias{"type", IdKind::type};
  constexpr Argument source{"source", IdKind::rotor};
  constexpr Argument gear{"gear", IdKind::phys_gear};
  constexpr Argument rotor{"rotor", IdKind::rotor};
  constexpr Argument id{"id"};
  constexpr Argument name{"name"};
  constexpr Argument number{"number"};
  constexpr Argument key{"key"};

  py::options options;
  options.disable_function_signatures();
  py::list list;
  QueryList query(type, list);

  // --- The documents ---
  query("base_type", &P::BaseType, {}, "The base type that the file names; empty without one.");
  query("alias_type", &P::AliasType, {}, "The alias type that the file names; empty without one.");
  query("calib_file_name", &P::CalibFileName, {}, "The calibration file; empty without one.");
  query("learn_file_name", &P::LearnFileName, {}, "The learn archive; empty without one.");

  // --- Names and ids ---
  query("mode_name", &P::ModeName, {mode},
        "The name to show for a test step, made for a virtual one; empty for an unknown id.");
  query("mode_id", &P::ModeId, {name}, "The test step of exactly this name; -1 for none.");
  query("is_valid_mode", &P::IsValidMode, {mode}, "Whether <TMode> holds the id.");
  query("phys_mode_name", &P::PhysModeName, {phys_mode}, "Empty for an unknown physical mode.");
  query(
      "phys_mode_id", +[](DataBase& d, Name text) { return d.params.PhysModeId(text); }, {name},
      "The physical mode of exactly this name; -1 for none.");
  query(
      "phys_mode_id", +[](DataBase& d, int step) { return d.params.PhysModeId(step); }, {mode},
      "The physical mode of a test step, virtual or not; -1 if it has none. A name by itself is "
      "that of the physical mode; behind `mode=`, or in a list, that of a test step.");
  query("is_valid_phys_mode", &P::IsValidPhysMode, {phys_mode},
        "Whether <TPhysMode> holds the id.");
  query("channel_name", &P::ChannelName, {channel},
        "The name of a channel; empty for an unknown one.");
  query("channel_id", &P::ChannelId, {name}, "The channel of exactly this name; -1 for none.");
  query("is_valid_channel", &P::IsValidChannel, {channel}, "Whether <TChannel> holds the id.");
  query("location_name", &P::LocationName, {location}, "Empty for an unknown object.");
  query("location_id", &P::LocationId, {name}, "The object of exactly this name; -1 for none.");
  query("is_valid_location", &P::IsValidLocation, {location}, "Whether <TLocation> holds the id.");
  query("instrument_name", &P::InstrumentName, {instrument}, "Empty for an unknown instrument.");
  query("instrument_id", &P::InstrumentId, {name},
        "The instrument of exactly this name; -1 for none.");
  query("is_valid_instrument", &P::IsValidInstrument, {instrument},
        "Whether <TInstrument> holds the id.");
  query("application_signal_name", &P::ApplicationSignalName, {signal},
        "Empty for an unknown signal.");
  query("application_signal_id", &P::ApplicationSignalId, {name},
        "The signal of exactly this name; -1 for none.");
  query("is_valid_application_signal", &P::IsValidApplicationSignal, {signal},
        "Whether <TApplicationSignal> holds the id.");
  query(
      "application_signal_unit",
      +[](DataBase& d, int a) { return d.params.ApplicationSignalUnit(a).prefixunit(false); },
      {signal},
      "The unit of a signal as people write it; empty for an unknown signal and for "
      "one without a dimension. Puts it into `unit_text` of <TAppSignalProperty>, where a file has "
      "a code.");
  query("sensor_group_name", &P::SensorGroupName, {sensor_group}, "Empty for an unknown group.");
  query("sensor_group_id", &P::SensorGroupId, {name},
        "The sensor group of exactly this name; -1 for none.");
  query("resampling_job_name", &P::ResamplingJobName, {id}, "Empty for an unknown job.");
  query("resampling_job_id", &P::ResamplingJobId, {name},
        "The resampling job of exactly this name; -1 for none.");
  query("resampling_set_name", &P::ResamplingSetName, {id}, "Empty for an unknown set.");
  query("resampling_set_id", &P::ResamplingSetId, {name},
        "The resampling set of exactly this name; -1 for none.");
  query("type_alias_name", &P::TypeAliasName, {type_alias}, "Empty for an unknown test type.");
  query("type_alias_id", &P::TypeAliasId, {name},
        "The test type of exactly this name; -1 for none.");
  query("bench_alias_name", &P::BenchAliasName, {id}, "Empty for an unknown test bench.");
  query("bench_alias_id", &P::BenchAliasId, {name},
        "The test bench of exactly this name; -1 for none.");
  query("instrument_param_name", &P::InstrumentParamName, {parameter},
        "Empty for an unknown parameter.");
  query("instrument_param_id", &P::InstrumentParamId, {name, instrument},
        "The first parameter of that name in the instrument, in the order of ids; -1 for none.");
  query("trigger_name", &P::TriggerName, {trigger}, "Empty for an unknown trigger.");
  query(
      "trigger_id", +[](DataBase& d, Name text) { return d.params.TriggerId(text); }, {name},
      "The first trigger of that name in the order of ids; -1 for none.");
  query(
      "trigger_id", +[](DataBase& d, int a) { return d.params.TriggerId(a); }, {parameter},
      "The trigger of a parameter, which may be a name behind `parameter=`; -1 if it has none.");
  query(
      "clavis_element_name",
      +[](DataBase& d, int element, int a) -> CString {
        if (element < 0 || element >= Clavis::element_count) return {};
        return d.params.ClavisElementName(element, a);
      },
      {{{"element"}, id}},
      "The name of an id of a key's element: 0 test step, 1 instrument, 2 channel, 3 object, 4 "
      "parameter, 5 sensor. Empty for an unknown id, and for another element.");
  query("location_property_flag", &P::LocationPropertyFlag, {location},
        "The flags of an object; 0 for an unknown one.");
  query(
      "time_signal_id", +[](DataBase& d) { return d.time_signal; }, {},
      "The signal that carries time; -1 if there is none.");

  // --- Test steps and virtual test steps ---
  query("is_virtual_mode", &P::IsVirtualMode, {mode}, "Whether the id is that of a virtual mode.");
  query("virt_mode_2_base_mode", &P::VirtMode2BaseMode, {mode},
        "The base of a virtual mode; any other id is its own base.");
  query("virt_mode_extension", static_cast<int (*)(int)>(&P::VirtModeExtension), {mode},
        "The extension of a virtual mode: a digit of six bits for each band; any other id is its "
        "own extension.");
  query("virt_mode_generate_id", &P::VirtModeGenerateId, {mode, {"extension"}},
        "The id with that base and extension; the base itself if that is negative.");
  query("virt_mode_digit", &P::VirtModeDigit, {mode, {"row"}},
        "The digit of the row at that place of <TAutoModeParam>, from 0; 0 where the id has no "
        "room.");
  query("virt_mode_name", &P::VirtModeName, {mode},
        "The name made for a virtual mode; empty for an id that isn't virtual or has no physical "
        "mode. The digit 0 shows as the position of no band, which means nothing.");
  query(
      "virt_mode_name_fragment",
      +[](DataBase& d, int a, bool positive, float position, unsigned precision) -> CString {
        const auto row = d.params.AutoModeParams().find(a);
        if (row == d.params.AutoModeParams().end()) return {};
        return d.params.VirtModeNameFragment(row, positive, position, precision);
      },
      {signal, {"positive"}, {"position"}, {"precision"}},
      "What the name of a virtual mode tells of a signal; empty for one without bands. The "
      "precision is a number of digits, 0 stands for 6.");
  query(
      "add_v_mode_name",
      +[](DataBase& d, int a, Name text) {
        d.ForgetNames();
        return d.params.AddVModeName(a, text);
      },
      {mode, name},
      "Gives a virtual mode a name of its own in this data base. False, with nothing changed, if "
      "the id isn't virtual or has a name.");
  query("mode_is_hidden", &P::ModeIsHidden, {mode},
        "Whether selections leave the test step out; False for a virtual mode.");
  query(
      "mode_is_of_type",
      +[](DataBase& d, int a, unsigned flag) {
        return d.params.ModeIsOfType(a, static_cast<QVModeProps::modeFlag>(flag));
      },
      {mode, {"flag"}},
      "Whether the flags of a test step and `flag` have a bit in common; False for an unknown "
      "one.");

  // --- Kinds of instruments ---
  query("result_type", &P::ResultType, {instrument},
        "1 single value, 2 and 5 track, 3 spectrum, 6 two-dimensional data; 0 for an instrument "
        "that the suite doesn't know.");
  query("is_single_value_instrument", &P::IsSingleValueInstrument, {instrument},
        "False for an instrument that the suite doesn't know.");
  query("is_track_instrument", &P::IsTrackInstrument, {instrument},
        "False for an instrument that the suite doesn't know.");
  query("is_spectrum_instrument", &P::IsSpectrumInstrument, {instrument},
        "False for an instrument that the suite doesn't know.");
  query("is_2d_data_instrument", &P::Is2dDataInstrument, {instrument},
        "False for an instrument that the suite doesn't know.");
  query("scalar_instrument_to_track_instrument", &P::ScalarInstrumentToTrackInstrument,
        {instrument}, "The instrument that gives the same result over time; -1 if there is none.");
  query("track_instrument_to_scalar_instrument", &P::TrackInstrumentToScalarInstrument,
        {instrument}, "The instrument whose result a track shows; -1 if there is none.");
  query("instrument_parameter_to_instrument", &P::InstrumentParameterToInstrument, {parameter},
        "The instrument of a parameter; -1 for an unknown one.");
  query("calc_param_enum_text", &QVIpCalcParameter::GetCalcParamEnumText, {number},
        "The name of a calculation parameter; a number without one gives the general word and "
        "itself.");
  query("calc_param_enum_sub_text", &QVIpCalcParameter::GetCalcParamEnumSubText,
        {number, {"value"}}, "The name of a value of a calculation parameter; empty without one.");

  const auto texts = [](auto collect) {
    std::list<CString> collected;
    collect(collected);
    py::list told;
    for (const CString& text : collected) told.append(ToStr(text));
    return told;
  };
  type.def(
      "calc_param_enum_texts",
      [texts](const std::shared_ptr<DataBase>& self) {
        Made(self);
        return texts([](auto& all) { QVIpCalcParameter::GetCalcParamEnumTexts(all); });
      },
      "The names of all calculation parameters, by their numbers from 0.");
  type.def(
      "calc_param_enum_sub_texts",
      [texts](const std::shared_ptr<DataBase>& self, int of) {
        Made(self);
        return texts([of](auto& all) { QVIpCalcParameter::GetCalcParamEnumSubTexts(of, all); });
      },
      py::arg("number"),
      "The names of the values of a calculation parameter, from 0; \"(0)\" alone for one without "
      "names.");

  // --- Key texts ---
  query(
      "format_clavis_text",
      +[](DataBase& d, const QClavis& a, int show_ids, unsigned mask) {
        if (show_ids < 0 || show_ids > P::show_id_if_no_name) {
          Raise(PyExc_ValueError, "show_ids is 0, 1 or 2");
        }
        return d.params.FormatClavisText(a, static_cast<P::show_id_t>(show_ids), mask);
      },
      {key, {"show_ids"}, {"mask"}},
      "A key of six ids or names as text. Ids are shown never (0), always (1) or where there is no "
      "name (2). Bit i of the mask: element i is shown, so that 63 stands for all.");
  query(
      "format_clavis_text_nice",
      +[](DataBase& d, const QClavis& a, Name separator) {
        return d.params.FormatClavisTextNice(a, separator);
      },
      {key, {"separator"}},
      "Test step, instrument and parameter, object and channel, sensor, by their names.");
  query(
      "format_instr_param_text",
      +[](DataBase& d, int a, int b) {
        CString text;
        d.params.FormatInstrParamText(text, a, b);
        return text;
      },
      {instrument, parameter},
      "The name of the instrument, and of the parameter if it has several. -1 stands for the "
      "parameter's own instrument.");
  query(
      "format_loca_chan_text",
      +[](DataBase& d, int a, int b) {
        CString text;
        d.params.FormatLocaChanText(text, a, b);
        return text;
      },
      {location, channel}, "Object and channel, as far as each is needed to tell them apart.");

  // --- Channels ---
  query("parent_channel", &P::ParentChannel, {mode, channel}, "-1 if there is none.");
  query("base_channel", &P::BaseChannel, {mode, channel},
        "The channel at the end of the chain of parents, the channel itself if it has none. 0, and "
        "not -1, for an unknown test step or channel.");
  query("channel_flags", &P::ChannelFlags, {mode, channel},
        "The resampling bits of all channels of the chain; 0 for an unknown test step or channel.");
  query("channel_resampling_type", &P::ChannelResamplingType, {channel},
        "The channel's own bits: 1 sync, 2 mix, 4 fix; 0 for an unknown channel.");
  query("channel_is_sync", &P::ChannelIsSync, {channel}, "False for an unknown channel.");
  query("channel_is_mix", &P::ChannelIsMix, {channel}, "False for an unknown channel.");
  query("channel_is_fix", &P::ChannelIsFix, {channel}, "False for an unknown channel.");

  // --- Rotors, speed sources and orders ---
  query("physical_gear", &P::PhysicalGear, {mode, gear},
        "The gear of the machine for which a gear stands; -1 for an unknown test step.");
  query("order_source_2_rotor", &P::OrderSource2Rotor, {mode, source},
        "The rotor of an order source. 0 if an argument is -1; -1 for an unknown test step.");
  query("rotor_speed_source", &P::RotorSpeedSource, {mode, source},
        "The speed source of the order source's rotor; -1 if there is none, and for virtual "
        "modes.");
  query(
      "rotor_speed_source_app_id", &P::RotorSpeedSourceAppId, {mode, source},
      "The signal that carries the speed of an order source's speed source; -1 if there is none.");
  query("speed_info_of_rotor", &P::SpeedInfoOfRotor, {mode, rotor},
        "The signal that carries the speed of a rotor; -1 if there is none.");
  query("base_order", &P::BaseOrder, {mode, gear},
        "The orders of a gear on the axis of its own rotor, its teeth for a wheel; 0 if there are "
        "none.");
  query("frequency_ratio", &P::FrequencyRatioToGeneratingRotor,
        {mode, {"generating", IdKind::rotor}, {"other", IdKind::rotor}},
        "How often the rotor of `other` turns while that of `generating` turns once, negative if "
        "it turns the other way round. 0 if the speed of either is unknown or `generating` stands "
        "still. The handle calls it FrequencyRatioToGeneratingRotor.");
  query("rotor_frequency_relative_to_speed_source_rotor",
        &P::RotorFrequencyRelativeToSpeedSourceRotor, {mode, source},
        "How often an order source turns in one turn of the speed source of its rotor; 0 if it has "
        "none.");

  // --- Spectrum intervals and triggers ---
  query(
      "spec_interval_definition",
      +[](DataBase& d, unsigned a) -> std::optional<CString> {
        const wchar_t* const text = d.params.SpecIntervalDefinition(a);
        if (text == nullptr) return std::nullopt;
        return text;
      },
      {parameter}, "The order definition of a parameter; None without one.");
  query(
      "trigger_dimension",
      +[](DataBase& d, int a, int b) { return CTriggerStore(d.params).dimension(a, b); },
      {mode, trigger},
      "The one dimension in which a trigger runs; -1 if there is none or more than one.");

  module.attr("queries") = list;
  type.def("_id",
           Method(+[](const DataBase& data, const std::string& what, const py::object& given) {
             const auto is_it = [&](int kind) {
               return TableCatalogue::HomeOf(static_cast<IdKind>(kind)).what == what;
             };
             int kind = 0;
             while (kind < static_cast<int>(IdKind::none) && !is_it(kind)) ++kind;
             return ToId(data, {what.c_str(), static_cast<IdKind>(kind)}, given,
                         std::numeric_limits<int>::max());
           }))
      .def("_key", Method(+[](const DataBase& data, const py::object& given) {
             return ToKey(data, given).attr("tolist")();
           }));
}

}  // namespace kestrin::python
