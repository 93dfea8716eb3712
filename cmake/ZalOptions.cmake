# SPDX-License-Identifier: Apache-2.0
# Compile options shared by every target, and the functions that make a room.

add_library(zal_options INTERFACE)
target_compile_features(zal_options INTERFACE cxx_std_20)
target_compile_options(zal_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual -Werror
    -ffp-contract=off -fno-strict-aliasing
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # g++ 12 sees overlaps in string concatenation that are not there
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
