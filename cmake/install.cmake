# Installing: libraries, the public headers, and the package that find_package(Tessarlorn) reads.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

configure_file(${PROJECT_SOURCE_DIR}/cmake/version.h.in ${PROJECT_BINARY_DIR}/generated/tessarlorn/version.h @ONLY)

if(WIN32)
  return()
endif()
foreach(name IN ITEMS platform component tsql embedded drivers_common odbc)
  if(TARGET tessarlorn_${name})
    install(TARGETS tessarlorn_${name} EXPORT Tessarlorn)
  endif()
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ ${PROJECT_BINARY_DIR}/generated/tessarlorn
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarlorn)
install(EXPORT Tessarlorn NAMESPACE tessarlorn:: FILE TessarlornTargets.cmake DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessarlornConfig.cmake ${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake
        DESTINATION ${package_folder})
