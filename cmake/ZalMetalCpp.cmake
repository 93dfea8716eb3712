# SPDX-License-Identifier: Apache-2.0
# zal_find_metal_cpp(): sets ZALMETAL_METAL_CPP_DIR to the folder of Apple's metal-cpp. In this order: the variable itself;
# a package named metal-cpp with the target metal-cpp::metal-cpp (what Conan's CMakeDeps writes and vcpkg's overlay ports
# install); a folder metal-cpp under the prefixes that CMake searches (vcpkg's toolchain file adds its own).
function(zal_find_metal_cpp)
    if(NOT ZALMETAL_METAL_CPP_DIR)
        find_package(metal-cpp CONFIG QUIET)
        if(TARGET metal-cpp::metal-cpp)
            get_target_property(folders metal-cpp::metal-cpp INTERFACE_INCLUDE_DIRECTORIES)
            string(REGEX REPLACE "\\$<\\$<CONFIG:[A-Za-z]*>:([^>]*)>" "\\1" folders "${folders}") # CMakeDeps names them per configuration
        endif()
        find_path(ZALMETAL_METAL_CPP_DIR Metal/Metal.hpp HINTS ${folders} PATH_SUFFIXES metal-cpp
            DOC "Folder of Apple's metal-cpp, of any release")
    endif()
    if(NOT EXISTS "${ZALMETAL_METAL_CPP_DIR}/Metal/Metal.hpp")
        message(FATAL_ERROR "Apple's metal-cpp is needed: hand in the folder that holds Metal/Metal.hpp as "
            "-D ZALMETAL_METAL_CPP_DIR=DIR, or install the package metal-cpp with Conan or vcpkg")
    endif()
endfunction()
