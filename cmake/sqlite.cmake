# SQLite for systems without a package of it: its source from the npm package better-sqlite3, fetched when it is not
# there yet, as the target SQLite::SQLite3.
enable_language(C)
set(sqlite_version 12.11.1)
set(sqlite_sha256 ebf0ed75a7a59dbcb3b24bbd014ef49d9f15bc328e4adcbf516f2a8fadfa2835)
set(sqlite_folder ${CMAKE_BINARY_DIR}/sqlite-${sqlite_version})
set(sqlite_archive ${sqlite_folder}/better-sqlite3-${sqlite_version}.tgz)
if(NOT EXISTS ${sqlite_folder}/package/deps/sqlite3/sqlite3.c)
  find_program(NPM NAMES npm.cmd npm REQUIRED)
  file(MAKE_DIRECTORY ${sqlite_folder})
  execute_process(COMMAND ${NPM} pack --silent better-sqlite3@${sqlite_version} WORKING_DIRECTORY ${sqlite_folder}
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(SHA256 ${sqlite_archive} found)
  if(NOT found STREQUAL sqlite_sha256)
    file(REMOVE ${sqlite_archive})
    message(FATAL_ERROR "better-sqlite3-${sqlite_version}.tgz is not the file that is expected: SHA256 ${found}")
  endif()
  file(ARCHIVE_EXTRACT INPUT ${sqlite_archive} DESTINATION ${sqlite_folder} PATTERNS package/deps/sqlite3/*)
endif()

add_library(tessarlorn_sqlite STATIC ${sqlite_folder}/package/deps/sqlite3/sqlite3.c)
add_library(SQLite::SQLite3 ALIAS tessarlorn_sqlite)
target_include_directories(tessarlorn_sqlite SYSTEM INTERFACE ${sqlite_folder}/package/deps/sqlite3)
target_compile_definitions(tessarlorn_sqlite PRIVATE SQLITE_THREADSAFE=1 SQLITE_OMIT_LOAD_EXTENSION
                                                     SQLITE_ENABLE_MATH_FUNCTIONS)
