# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` puts where, and the packages made of it. Libraries find one another beside themselves, so an
# installed tree may be moved as a whole.

include(CMakePackageConfigHelpers)

set(zal_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ZALMetal")
set(zal_targets ZALMetal)
set(zal_doc_dir "${CMAKE_INSTALL_DATAROOTDIR}/doc/libzalmetal-dev") # named like the Debian package, as its rules ask
if(NOT APPLE)
    list(APPEND zal_targets SoftMetal)
    set_target_properties(SoftMetalCompiler PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS SoftMetalCompiler LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" NAMELINK_SKIP)
    install(DIRECTORY SoftMetal/include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/SoftMetal")
    set_target_properties(${zal_targets} PROPERTIES INSTALL_RPATH "$ORIGIN")
    set(zal_link "-lZALMetal -lSoftMetal")
else()
    set(zal_link "-lZALMetal -framework Metal -framework QuartzCore -framework AppKit -framework Foundation")
endif()
install(TARGETS ${zal_targets} EXPORT ZALMetalTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY include/ZALMetal DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
# The pages lie as in the repository, so that their links lead somewhere.
install(FILES LICENSE CHANGELOG.md README.md CONTRIBUTING.md SECURITY.md DESTINATION "${zal_doc_dir}")
install(FILES LICENSE DESTINATION "${zal_doc_dir}" RENAME copyright) # where Debian looks
install(DIRECTORY docs DESTINATION "${zal_doc_dir}" PATTERN man EXCLUDE)

install(EXPORT ZALMetalTargets NAMESPACE ZALMetal:: DESTINATION "${zal_package_dir}")
configure_package_config_file(cmake/ZALMetalConfig.cmake.in "${CMAKE_BINARY_DIR}/ZALMetalConfig.cmake" INSTALL_DESTINATION "${zal_package_dir}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/ZALMetalConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/ZALMetalConfig.cmake" "${CMAKE_BINARY_DIR}/ZALMetalConfigVersion.cmake" DESTINATION "${zal_package_dir}")

configure_file(cmake/zalmetal.pc.in "${CMAKE_BINARY_DIR}/zalmetal.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/zalmetal.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# What goes with a tool: its manual page, and the completion of its command line in bash.
function(zal_install_tool_pages tool)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/man/${tool}.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    install(FILES "${PROJECT_SOURCE_DIR}/Tools/completion/${tool}" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
endfunction()

if(ZALMETAL_BUILD_EXAMPLES)
    foreach(tool zalasm zalinfo zaldiff)
        if(TARGET ${tool})
            set_target_properties(${tool} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
            install(TARGETS ${tool} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
            zal_install_tool_pages(${tool})
        endif()
    endforeach()
endif()

# zalbench looks for its workers beside itself, so they share a folder that is on nobody's path; a link leads there. A tree
# in which it was not built is installed without it.
if(ZALMETAL_BUILD_BENCH)
    set(zal_bench_dir "${CMAKE_INSTALL_LIBEXECDIR}/zalmetal")
    file(RELATIVE_PATH zal_bench_from_bin "/${CMAKE_INSTALL_BINDIR}" "/${zal_bench_dir}")
    file(RELATIVE_PATH zal_lib_from_bench "/${zal_bench_dir}" "/${CMAKE_INSTALL_LIBDIR}")
    zal_install_tool_pages(zalbench)
endif()

set(CPACK_PACKAGE_NAME libzalmetal-dev)
set(CPACK_PACKAGE_VENDOR "The libZALMetal authors")
set(CPACK_PACKAGE_CONTACT "The libZALMetal authors <zalmetal@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libgl-dev")
include(CPack)
