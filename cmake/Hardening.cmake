# A fault in memory ends the program rather than serves somebody: canaries on the stack, checked copies, an address that
# nobody knows, tables of addresses that are read-only before the first line runs. Each room is built so, and whatever links
# one is linked so; tests/tools/hardening.py reads the finished files for it.
add_library(quillmere_hardening INTERFACE)
target_compile_options(quillmere_hardening INTERFACE -fstack-protector-strong)
if(NOT QUILLMERE_SANITIZE)
  # Only with optimisation; sanitizers have checks of their own in the same places. Distributions set another strength.
  target_compile_options(quillmere_hardening INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>")
endif()
target_link_options(quillmere_hardening INTERFACE
  $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie> -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
