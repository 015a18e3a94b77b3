# Installing: libraries, headers under include/tessarlorn, and the package that find_package(Tessarlorn) reads.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# tessarlorn_install_library(<target> <folder>...): installs a library and the headers of its rooms.
function(tessarlorn_install_library target)
  # On Windows the product is the library for clients of COM.
  if(WIN32)
    return()
  endif()
  install(TARGETS ${target} EXPORT Tessarlorn)
  foreach(folder IN LISTS ARGN)
    file(RELATIVE_PATH room ${PROJECT_SOURCE_DIR}/src ${folder})
    if(EXISTS ${folder})
      install(DIRECTORY ${folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarlorn/${room}
              FILES_MATCHING PATTERN "*.h")
    endif()
  endforeach()
endfunction()

configure_file(${PROJECT_SOURCE_DIR}/cmake/version.h.in ${PROJECT_BINARY_DIR}/generated/platform/version.h @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/generated/platform/version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarlorn/platform)

if(WIN32)
  return()
endif()
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarlorn)
install(EXPORT Tessarlorn NAMESPACE tessarlorn:: FILE TessarlornTargets.cmake DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessarlornConfig.cmake ${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake
        DESTINATION ${package_folder})
