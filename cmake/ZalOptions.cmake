# SPDX-License-Identifier: Apache-2.0
# Compile options shared by every target, and the functions that make a room.

add_library(zal_options INTERFACE)
target_compile_features(zal_options INTERFACE cxx_std_20)
target_compile_options(zal_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual -Werror
    -ffp-contract=off -fno-strict-aliasing
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # g++ 12 sees overlaps in string concatenation that are not there
    $<$<BOOL:${APPLE}>:-Wno-deprecated-declarations> # releases of metal-cpp rename calls; the old names go on
    $<$<CONFIG:Debug>:-O1>)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(ZALMETAL_SANITIZE)
    target_compile_options(zal_options INTERFACE -fsanitize=${ZALMETAL_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer -g1)
    target_link_options(zal_options INTERFACE -fsanitize=${ZALMETAL_SANITIZE})
endif()

# A room of SoftMetal: an object library that may include only the rooms it names.
#   softmetal_room(raster SOURCES a.cpp b.cpp ROOMS formats workers)
# Its headers are included as <folder>/<Header.h> from SoftMetal/.
function(softmetal_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;ROOMS;LIBRARIES" ${ARGN})
    add_library(softmetal_${name} OBJECT ${ROOM_SOURCES})
    target_link_libraries(softmetal_${name} PUBLIC zal_options softmetal_api ${ROOM_LIBRARIES})
    foreach(room IN LISTS ROOM_ROOMS)
        # Include paths and definitions only: the objects are gathered once, in the library.
        add_dependencies(softmetal_${name} softmetal_${room})
    endforeach()
    set_property(GLOBAL APPEND PROPERTY SOFTMETAL_ROOMS softmetal_${name})
endfunction()

# An inner loop that is compiled for each set of vector instructions: nameBase.cpp, nameAvx2.cpp, nameAvx512.cpp, all of
# them sources of the room whose CMakeLists.txt calls this. Fused operations stay off, so that all give the same bits.
function(softmetal_kernel name)
    # g++ 12 takes the undefined operands of its own intrinsics for mistakes.
    set(common -Wno-psabi $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    set_source_files_properties(${name}Base.cpp PROPERTIES COMPILE_OPTIONS "${common}")
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        set(avx2 ${common} -mavx2)
        set(avx512 ${common} -mavx512f -mavx512vl -mavx512bw -mavx512dq -mprefer-vector-width=512)
    else()
        set(avx2 ${common})
        set(avx512 ${common})
    endif()
    set_source_files_properties(${name}Avx2.cpp PROPERTIES COMPILE_OPTIONS "${avx2}")
    set_source_files_properties(${name}Avx512.cpp PROPERTIES COMPILE_OPTIONS "${avx512}")
endfunction()
