# Whether `kestrindb bench` measures something of everything on the sample, and whether library and tool know the version.

execute_process(COMMAND "${KESTRINDB}" --version OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
if(NOT version STREQUAL "kestrindb ${VERSION}\n")
  message(SEND_ERROR "kestrindb --version printed '${version}'")
endif()

execute_process(COMMAND "${KESTRINDB}" bench "${SAMPLE}" --seconds 0.002 --json
  OUTPUT_VARIABLE json COMMAND_ERROR_IS_FATAL ANY)

# A second is more than any step or call on the sample takes, in whatever build.
foreach(list_field_unit IN ITEMS "steps;median_ms;1e3" "queries;median_ns;1e9")
  list(GET list_field_unit 0 list)
  list(GET list_field_unit 1 field)
  list(GET list_field_unit 2 second)
  string(JSON count LENGTH "${json}" ${list})
  math(EXPR last "${count} - 1")
  foreach(i RANGE ${last})
    string(JSON median ERROR_VARIABLE missing GET "${json}" ${list} ${i} ${field})
    if(missing OR NOT median GREATER 0 OR median GREATER second)
      string(JSON row GET "${json}" ${list} ${i})
      message(SEND_ERROR "Not measured: ${row}")
    endif()
  endforeach()
endforeach()
