# One set of options for every target, so that all can share precompiled headers; a warning is an error.
add_library(quillmere_options INTERFACE)
target_compile_options(quillmere_options INTERFACE
  -pthread -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wconversion -Wno-sign-conversion
  -fno-strict-overflow $<$<CXX_COMPILER_ID:Clang>:-D__cpp_impl_coroutine=201902L>)
target_compile_definitions(quillmere_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY QT_NO_FOREACH QT_NO_JAVA_STYLE_ITERATORS
  QUILLMERE_VERSION="${PROJECT_VERSION}")
# Collecting garbage costs GCC a tenth of its time and is for machines with less memory than one file takes (300 MB).
target_compile_options(quillmere_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:SHELL:--param ggc-min-heapsize=1000000>)
if(QUILLMERE_SANITIZE)
  target_compile_options(quillmere_options INTERFACE -fsanitize=${QUILLMERE_SANITIZE} -fno-omit-frame-pointer -g1)
  target_link_options(quillmere_options INTERFACE -fsanitize=${QUILLMERE_SANITIZE})
  # Clang 14 cannot put that check's data in front of a coroutine's parts.
  target_compile_options(quillmere_options INTERFACE $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
  # GCC's flow analysis reports false overflows in instrumented library code.
  target_compile_options(quillmere_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-error=maybe-uninitialized -Wno-error=stringop-overflow -Wno-error=stringop-overread -Wno-error=array-bounds>)
endif()
# Links in a third of the time of the usual one; both are in the same package.
find_program(GOLD ld.gold)
if(GOLD)
  target_link_options(quillmere_options INTERFACE -fuse-ld=gold)
endif()
