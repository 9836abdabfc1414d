# Compiler options shared by every target.

# What the language is: the same for all, because it decides what the bytes are.
add_library(noxlux_langage INTERFACE)
target_compile_options(noxlux_langage INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fexec-charset=ISO-8859-1>)
if(NOXLUX_32)
  # SSE2 arithmetic, so that both word sizes compute the same cents.
  target_compile_options(noxlux_langage INTERFACE -m32 -msse2 -mfpmath=sse -D_FILE_OFFSET_BITS=64)
  target_link_options(noxlux_langage INTERFACE -m32)
endif()
# No fused or reordered arithmetic on any target.
target_compile_options(noxlux_langage INTERFACE -ffp-contract=off)
if(NOXLUX_ASSAINIR)
  target_compile_options(noxlux_langage INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(noxlux_langage INTERFACE -fsanitize=address,undefined)
endif()

add_library(noxlux_avertissements INTERFACE)
target_compile_options(noxlux_avertissements INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Woverloaded-virtual -Werror)
