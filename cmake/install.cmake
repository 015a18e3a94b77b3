# Installing: libraries, headers under include/tessarlorn, and the package that find_package(Tessarlorn) reads.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

configure_file(${PROJECT_SOURCE_DIR}/cmake/version.h.in ${PROJECT_BINARY_DIR}/generated/platform/version.h @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/generated/platform/version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarlorn/platform)

if(WIN32)
  return()
endif()
foreach(name IN ITEMS platform component tsql embedded drivers_common odbc)
  if(TARGET tessarlorn_${name})
    install(TARGETS tessarlorn_${name} EXPORT Tessarlorn)
  endif()
endforeach()
foreach(room IN ITEMS platform frame siblings automation drivers/embedded drivers/odbc)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/${room}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarlorn/${room}
          FILES_MATCHING PATTERN "*.h")
endforeach()
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarlorn)
install(EXPORT Tessarlorn NAMESPACE tessarlorn:: FILE TessarlornTargets.cmake DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessarlornConfig.cmake ${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake
        DESTINATION ${package_folder})
