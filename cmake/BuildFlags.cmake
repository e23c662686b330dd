# The compiler and linker flags of this project's own code, as a target to link privately.

add_library(tev_build_flags INTERFACE)

target_compile_options(tev_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2 -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast>
    # Locks that are ours are checked by the compiler that can.
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
    $<$<BOOL:${TEV_WARNINGS_AS_ERRORS}>:-Werror>)

if(TEV_SANITIZERS)
    add_compile_options(-fsanitize=${TEV_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TEV_SANITIZERS})
endif()

# A sanitizer's runtime stays an undefined symbol of a library that clang links.
if(NOT (TEV_SANITIZERS AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang"))
    target_link_options(tev_build_flags INTERFACE LINKER:-z,defs)
endif()
