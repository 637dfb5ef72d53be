# What every target of this project is built with: the language level, the warnings, and the sanitizers where a preset
# asks for them. Targets link to kestrin::build privately, so nothing of it reaches a program that uses the library.

add_library(kestrin_build INTERFACE)
add_library(kestrin::build ALIAS kestrin_build)

target_compile_features(kestrin_build INTERFACE cxx_std_20)
target_compile_options(kestrin_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # The same float results from every compiler and in every build type: no fused multiply-add.
  -ffp-contract=off
  # GCC 12 raises false alarms about bounds in any "text" + string that it inlines.
  "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict;-Wno-stringop-overflow;-Wno-array-bounds>")
if(KESTRIN_WERROR)
  target_compile_options(kestrin_build INTERFACE -Werror)
endif()
if(KESTRIN_SANITIZE)
  target_compile_options(kestrin_build INTERFACE
    -fsanitize=${KESTRIN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kestrin_build INTERFACE -fsanitize=${KESTRIN_SANITIZE})
endif()
