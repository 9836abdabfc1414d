# Compiler options shared by every target, the tests' own framework included.

# Messages reach the host as ISO-8859-1, whatever compiles them.
set(CLANG_LATIN1 ${CMAKE_SOURCE_DIR}/cmake/clang-latin1)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fexec-charset=ISO-8859-1>)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER ${CLANG_LATIN1})
else()
  message(FATAL_ERROR "noxlux is compiled by GCC or clang: its texts must become ISO-8859-1, and how ${CMAKE_CXX_COMPILER_ID} "
    "would do that is not known here.")
endif()
# No fused arithmetic: every build computes the same cents.
add_compile_options(-ffp-contract=off)
if(NOXLUX_32)
  add_compile_options(-m32 -msse2 -mfpmath=sse)
  add_compile_definitions(_FILE_OFFSET_BITS=64)
  add_link_options(-m32)
endif()
if(NOXLUX_ASSAINIR)
  # Instrumented code takes the optimizer four times as long as it then saves.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -O0 -g1)
  add_link_options(-fsanitize=address,undefined)
endif()
if(NOXLUX_FILS)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -O0 -g1)
  add_link_options(-fsanitize=thread)
endif()
if(NOXLUX_COUVERTURE)
  add_compile_options(--coverage -fprofile-update=atomic -O0)
  add_link_options(--coverage)
endif()
if(NOXLUX_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link -O1)
endif()

# What a fault of the code could be turned into is kept small: guarded stacks, copies checked against the size of
# their target (which takes the optimizer), addresses of functions that nothing can write once they are bound.
add_compile_options(-fstack-protector-strong)
if(NOT NOXLUX_ASSAINIR)
  add_compile_options("$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
add_link_options(-Wl,-z,relro -Wl,-z,now)

add_library(noxlux_avertissements INTERFACE)
target_compile_options(noxlux_avertissements INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wsign-conversion -Woverloaded-virtual>
  # GCC 12 sees overlaps in string concatenations that are none.
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>)
