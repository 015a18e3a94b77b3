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
# The manual page and the completions are what the command says of itself.
if(TARGET tessarlorn)
  set(shell_folder ${PROJECT_BINARY_DIR}/generated/shell)
  set(shell_files)
  foreach(page IN ITEMS "man:tessarlorn.1:${CMAKE_INSTALL_MANDIR}/man1"
                        "completion bash:tessarlorn:${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
                        "completion zsh:_tessarlorn:${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
    string(REPLACE ":" ";" page ${page})
    list(GET page 0 words)
    list(GET page 1 file)
    list(GET page 2 destination)
    separate_arguments(words)
    add_custom_command(OUTPUT ${shell_folder}/${file}
                       COMMAND ${CMAKE_COMMAND} -E make_directory ${shell_folder}
                       COMMAND tessarlorn ${words} > ${shell_folder}/${file}
                       DEPENDS tessarlorn VERBATIM)
    list(APPEND shell_files ${shell_folder}/${file})
    install(FILES ${shell_folder}/${file} DESTINATION ${destination})
  endforeach()
  add_custom_target(tessarlorn_shell_files ALL DEPENDS ${shell_files})
endif()
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarlorn)
install(EXPORT Tessarlorn NAMESPACE tessarlorn:: FILE TessarlornTargets.cmake DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessarlornConfig.cmake ${PROJECT_BINARY_DIR}/TessarlornConfigVersion.cmake
        DESTINATION ${package_folder})
