# Flags that make memory errors harder to exploit: they end the process when such an error happens, and
# remove what an attack needs.
#
# They are on a target of their own, for the library and the command; programs that use the library keep
# their own flags. A flag that the compiler or the processor does not have is left out.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckPIESupported)

check_pie_supported()
add_library(adexp_hardening INTERFACE)
if(NOT ADEXP_HARDENING)
    return()
endif()

check_cxx_compiler_flag(-fstack-protector-strong ADEXP_HAS_STACK_PROTECTOR)
check_cxx_compiler_flag(-fstack-clash-protection ADEXP_HAS_STACK_CLASH_PROTECTION)
check_cxx_compiler_flag(-fcf-protection=full ADEXP_HAS_CF_PROTECTION) # x86 only
target_compile_options(adexp_hardening INTERFACE
    $<$<BOOL:${ADEXP_HAS_STACK_PROTECTOR}>:-fstack-protector-strong>
    $<$<BOOL:${ADEXP_HAS_STACK_CLASH_PROTECTION}>:-fstack-clash-protection>
    $<$<BOOL:${ADEXP_HAS_CF_PROTECTION}>:-fcf-protection=full>)

# Checked copies need an optimised build, and AddressSanitizer has checks of its own. Older systems know
# only level 2 and would warn.
if(NOT ADEXP_SANITIZE)
    set(CMAKE_REQUIRED_FLAGS "-O2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
    check_cxx_source_compiles("#include <cstring>\nint main() {}" ADEXP_HAS_FORTIFY_3)
    unset(CMAKE_REQUIRED_FLAGS)
    target_compile_options(adexp_hardening INTERFACE
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
        $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=$<IF:$<BOOL:${ADEXP_HAS_FORTIFY_3}>,3,2>>)
endif()

target_link_options(adexp_hardening INTERFACE
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
