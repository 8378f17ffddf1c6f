# What every target of ours is compiled with, and the functions that make one.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(murkwell_options INTERFACE)
target_compile_features(murkwell_options INTERFACE cxx_std_20)
target_include_directories(murkwell_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(murkwell_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override>
    $<$<CXX_COMPILER_ID:Clang>:-Wsuggest-override -Wno-missing-field-initializers>
    $<$<BOOL:${MURKWELL_WARNINGS_AS_ERRORS}>:-Werror>)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    # The same bytes wherever it was built, and hard to take over: what it reads, others made.
    # tools/check-hardening looks at the result.
    include(CheckPIESupported)
    check_pie_supported()
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    target_compile_options(murkwell_options INTERFACE
        "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=."
        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection
        -fcf-protection
        # GCC 12 takes "text" + string for an overlapping copy (its bug 105651).
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
    target_link_options(murkwell_options INTERFACE -Wl,-z,relro,-z,now)
endif()
if(MURKWELL_SANITIZE)
    target_compile_options(murkwell_options INTERFACE
        -fsanitize=${MURKWELL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # GCC sees uninitialised parts in empty optionals once the checks are woven in.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(murkwell_options INTERFACE -fsanitize=${MURKWELL_SANITIZE})
endif()
if(MURKWELL_BUILD_FUZZERS)
    # Coverage for the fuzzer in every library; only the targets link its main.
    target_compile_options(murkwell_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)

# murkwell_library(core SOURCES ... [LINKS ...] [SYSTEM_LINKS ...])
# A static library murkwell_<name>. LINKS are public; libraries of others go into SYSTEM_LINKS and
# stay private, so that no layer above can include their headers by accident.
function(murkwell_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;SYSTEM_LINKS" ${ARGN})
    add_library(murkwell_${name} STATIC ${ARG_SOURCES})
    target_link_libraries(murkwell_${name}
        PUBLIC murkwell_options ${ARG_LINKS}
        PRIVATE ${ARG_SYSTEM_LINKS})
endfunction()
