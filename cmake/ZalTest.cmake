# SPDX-License-Identifier: Apache-2.0
# zal_add_test(name SOURCES … LIBRARIES … [ENVIRONMENT A=B …]): one GoogleTest executable, its cases discovered for ctest.

# Shaders that one test compiled are known to the next, in the build folder and not in the user's; a test of the compiler
# itself says SOFTMETAL_CACHE_DIR= among its environment.
set(ZAL_SHADER_CACHE "SOFTMETAL_CACHE_DIR=${PROJECT_BINARY_DIR}/shader-cache")

function(zal_add_test name)
    cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LIBRARIES;ENVIRONMENT" ${ARGN})
    find_package(GTest REQUIRED)
    include(GoogleTest)
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 300)
    endif()
    set(environment ${TEST_ENVIRONMENT})
    if(NOT "${environment}" MATCHES "SOFTMETAL_CACHE_DIR=")
        list(PREPEND environment "${ZAL_SHADER_CACHE}")
    endif()
    string(REPLACE ";" "\\;" environment "${environment}") # one property, not several
    add_executable(${name} ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE zal_options ${TEST_LIBRARIES} GTest::gtest_main)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/Tests")
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT ${TEST_TIMEOUT} ENVIRONMENT "${environment}")
endfunction()
