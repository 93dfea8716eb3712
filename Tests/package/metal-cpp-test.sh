#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# metal-cpp-test.sh CMAKE MODULES: whether a build for macOS finds metal-cpp in each of the ways that it is installed.
set -euo pipefail
cmake=$1 modules=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

headers() { mkdir -p "$1/Metal" && : > "$1/Metal/Metal.hpp"; }

mkdir "$work/host"
cat > "$work/host/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.22)
project(host LANGUAGES NONE)
list(APPEND CMAKE_MODULE_PATH "$modules")
include(ZalMetalCpp)
set(CMAKE_FIND_USE_CMAKE_SYSTEM_PATH OFF) # what the machine has installed does not count
set(CMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH OFF)
zal_find_metal_cpp()
message(STATUS "found \${ZALMETAL_METAL_CPP_DIR}.")
END

expect() { # what is looked for, cmake's arguments
    local wanted=$1; shift
    rm -rf "$work/build"
    local got; got=$("$cmake" -S "$work/host" -B "$work/build" "$@" 2>&1 || true)
    got=$(tr -s '\n ' ' ' <<< "$got") # errors are wrapped
    [[ $got == *"$wanted"* ]] || { echo "cmake $* does not say '$wanted':" >&2; echo "$got" >&2; exit 1; }
}

package() { # prefix, include folders of the target
    mkdir -p "$1/lib/cmake/metal-cpp"
    cat > "$1/lib/cmake/metal-cpp/metal-cpp-config.cmake" <<END
add_library(metal-cpp::metal-cpp INTERFACE IMPORTED)
set_property(TARGET metal-cpp::metal-cpp PROPERTY INTERFACE_INCLUDE_DIRECTORIES "$2")
END
}

headers "$work/unpacked"
expect "found $work/unpacked." -DZALMETAL_METAL_CPP_DIR="$work/unpacked"

headers "$work/prefix/include/metal-cpp"
expect "found $work/prefix/include/metal-cpp." -DCMAKE_PREFIX_PATH="$work/prefix"

headers "$work/store/headers"
package "$work/plain" "$work/store/headers"
expect "found $work/store/headers." -DCMAKE_PREFIX_PATH="$work/plain"

package "$work/conan" "\$<\$<CONFIG:Release>:$work/store/headers>"
expect "found $work/store/headers." -Dmetal-cpp_DIR="$work/conan/lib/cmake/metal-cpp"

expect "hand in the folder that holds Metal/Metal.hpp" -DZALMETAL_METAL_CPP_DIR="$work/empty"
expect "install the package metal-cpp with Conan or vcpkg"
