# The warnings for the project's own code. They are on a target of their own, so that they never apply to
# programs that use the library.
add_library(adexp_warnings INTERFACE)
target_compile_options(adexp_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<CXX_COMPILER_ID:Clang>:-Wno-bitwise-instead-of-logical> # meant, for speed
    $<$<BOOL:${ADEXP_WERROR}>:-Werror>)
