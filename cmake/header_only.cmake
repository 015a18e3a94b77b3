# Libraries of nothing but headers, as the building machine has them, for compilers that must not see the other headers
# of that machine.

# tessarlorn_header_only(<target> <folder>): the library whose headers are in a folder of /usr/include.
function(tessarlorn_header_only target folder)
  find_path(${folder}_FOLDER ${folder} PATHS /usr/include REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  set(seen ${CMAKE_BINARY_DIR}/header_only)
  file(MAKE_DIRECTORY ${seen})
  file(CREATE_LINK ${${folder}_FOLDER}/${folder} ${seen}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} INTERFACE ${seen})
endfunction()
