# The compiler and linker flags of this project's own code, as a target to link privately.

add_library(tev_build_flags INTERFACE)

target_compile_options(tev_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2 -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast>
    # Locks that are ours are checked by the compiler that can.
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
    $<$<BOOL:${TEV_WARNINGS_AS_ERRORS}>:-Werror>)

# What makes a fault harder to use: checked stacks and buffers, branches that land only where a function begins, programs
# at a place of the loader's choice, and tables of addresses that nothing can write once the loader is done.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()
check_cxx_compiler_flag(-fcf-protection=full TEV_CF_PROTECTION)
target_compile_options(tev_build_flags INTERFACE
    -fstack-protector-strong
    $<$<BOOL:${TEV_CF_PROTECTION}>:-fcf-protection=full>)
target_link_options(tev_build_flags INTERFACE LINKER:-z,relro LINKER:-z,now)
# It works on optimised code only, and hides calls from the sanitizers.
if(NOT TEV_SANITIZERS)
    target_compile_definitions(tev_build_flags INTERFACE $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:_FORTIFY_SOURCE=2>)
endif()

if(TEV_SANITIZERS)
    add_compile_options(-fsanitize=${TEV_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TEV_SANITIZERS})
endif()

# A sanitizer's runtime stays an undefined symbol of a library that clang links.
if(NOT (TEV_SANITIZERS AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang"))
    target_link_options(tev_build_flags INTERFACE LINKER:-z,defs)
endif()
