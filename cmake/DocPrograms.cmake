# Keeps the programs of the documentation true. A page tells one program, in pieces:
#
#   the first ```cpp block is a program with a main;
#   the ```cpp blocks behind it go on with it, in front of the last brace of its main;
#   the ```text blocks are what the program prints, in that order.
#
# A piece may begin with #include <...> lines. Blocks of any other kind are for the reader alone. doc_programs(PAGE...)
# makes the program of each page and a test, Docs.guide for docs/guide.md, that runs it with the sample and compares. A
# program sees what a host sees, the shared library and its umbrella header. Compilers name the page and its line.

# The test, run as: cmake -D PROGRAM=... -D ARGUMENT=... -D EXPECTED=... -P DocPrograms.cmake
if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  execute_process(COMMAND "${PROGRAM}" "${ARGUMENT}" OUTPUT_FILE "${PROGRAM}.out" COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND diff -u --label page --label program "${EXPECTED}" "${PROGRAM}.out" COMMAND_ERROR_IS_FATAL ANY)
  return()
endif()

set(DOC_PROGRAMS_SCRIPT "${CMAKE_CURRENT_LIST_FILE}")

function(doc_programs)
  foreach(page IN LISTS ARGN)
    cmake_path(GET page STEM name)
    doc_read_page("${PROJECT_SOURCE_DIR}/${page}" program output)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/docs/${name}.cpp")
    set(expected "${CMAKE_CURRENT_BINARY_DIR}/docs/${name}.txt")
    doc_write("${source}" "${program}")
    doc_write("${expected}" "${output}")
    add_executable(doc_${name} "${source}")
    target_link_libraries(doc_${name} PRIVATE lKestrinDb kestrin::build)
    add_test(NAME Docs.${name} COMMAND "${CMAKE_COMMAND}"
      -D "PROGRAM=$<TARGET_FILE:doc_${name}>" -D "ARGUMENT=${PROJECT_SOURCE_DIR}/samples/gearbox.par"
      -D "EXPECTED=${expected}" -P "${DOC_PROGRAMS_SCRIPT}")
  endforeach()
endfunction()

function(doc_read_page page program_variable output_variable)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${page}")
  file(READ "${page}" rest)
  set(head "")
  set(body "")
  set(output "")
  set(line 1)
  while(rest MATCHES "\n```")
    # Up to the fence that opens a block, the word behind it, the block, and the fence that closes it.
    doc_cut(rest "\n```" before)
    doc_cut(rest "\n" word)
    doc_cut(rest "\n```" block)
    doc_count_lines("${before}" above)
    doc_count_lines("${block}" inside)
    math(EXPR line "${line} + ${above} + 2")
    if(word STREQUAL "cpp")
      string(REGEX MATCHALL "#include <[^\n]*\n" includes "${block}")
      list(JOIN includes "" includes)
      string(APPEND head "${includes}")
      string(REGEX REPLACE "#include <[^\n]*\n" "\n" block "${block}")
      if(body STREQUAL "")
        string(REGEX REPLACE "}$" "" block "${block}")
      endif()
      string(APPEND body "#line ${line} \"${page}\"\n${block}\n")
    elseif(word STREQUAL "text")
      string(APPEND output "${block}\n")
    endif()
    math(EXPR line "${line} + ${inside} + 1")
  endwhile()
  set(${program_variable} "${head}${body}}\n" PARENT_SCOPE)
  set(${output_variable} "${output}" PARENT_SCOPE)
endfunction()

# Takes what stands in front of the mark out of a text, and the mark with it.
function(doc_cut text_variable mark front_variable)
  set(text "${${text_variable}}")
  string(FIND "${text}" "${mark}" end)
  if(end EQUAL -1)
    message(FATAL_ERROR "A block of the page is empty or has no end: ${text}")
  endif()
  string(LENGTH "${mark}" length)
  math(EXPR behind "${end} + ${length}")
  string(SUBSTRING "${text}" 0 ${end} front)
  string(SUBSTRING "${text}" ${behind} -1 text)
  set(${front_variable} "${front}" PARENT_SCOPE)
  set(${text_variable} "${text}" PARENT_SCOPE)
endfunction()

function(doc_count_lines text count_variable)
  string(REGEX REPLACE "[^\n]" "" ends "${text}")
  string(LENGTH "${ends}" count)
  set(${count_variable} ${count} PARENT_SCOPE)
endfunction()

# Leaves a file alone that holds the text already, so that nothing is compiled anew.
function(doc_write file text)
  file(WRITE "${file}.new" "${text}")
  file(COPY_FILE "${file}.new" "${file}" ONLY_IF_DIFFERENT)
endfunction()
