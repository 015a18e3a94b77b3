# What every target of the project has in common.

# The library for Windows asks for no other library than those of Windows.
if(MSVC)
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
endif()

# tessarlorn_sources(<variable> <folder>...): the sources of some folders; a new file is found by the next build.
function(tessarlorn_sources variable)
  list(TRANSFORM ARGN APPEND "/*.cpp")
  file(GLOB found CONFIGURE_DEPENDS ${ARGN})
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

# tessarlorn_unity(<target>): with TESSARLORN_UNITY the sources of a room are compiled together, some at a time: most of
# the time goes into the headers. Those of `compiled_alone` have private names that another source of the room has, too.
set(compiled_alone
    src/upload/upload_items.cpp
    src/tsql/values/date_parse.cpp
    src/tsql/values/types.cpp
    src/hosts/objects/recordset/field_object.cpp
    src/hosts/objects/recordset/properties_object.cpp
    src/hosts/objects/recordset/recordset_object.cpp
    src/hosts/objects/vector_object.cpp
    tests/automation/escape_test.cpp
    tests/browse/order_list_test.cpp)
function(tessarlorn_unity target)
  if(NOT TESSARLORN_UNITY)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # GCC takes what it includes for a header, where a class with private parts would be two.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  get_target_property(sources ${target} SOURCES)
  set(count 0)
  set(last_folder "")
  foreach(source IN LISTS sources)
    get_filename_component(folder ${source} DIRECTORY)
    if(NOT folder STREQUAL last_folder OR count EQUAL 8)
      math(EXPR group "${group} + 1")
      set(count 0)
      set(last_folder "${folder}")
    endif()
    math(EXPR count "${count} + 1")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${source})
    if(name IN_LIST compiled_alone)
      set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endforeach()
endfunction()

function(tessarlorn_warnings target)
  if(MSVC)
    # Its warnings are no errors while nobody has seen them: among others it warns of code behind `if constexpr`.
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8)
    return()
  endif()
  target_compile_options(
    ${target}
    PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Wimplicit-fallthrough
            # Interfaces of COM have no virtual destructor.
            $<$<NOT:$<BOOL:${WIN32}>>:-Wnon-virtual-dtor>
            # GCC 12 warns of copies inside std::string, and of temporaries, that cannot be.
            "$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-dangling-pointer>"
            $<$<BOOL:${TESSARLORN_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()

# tessarlorn_version_resource(<target> <file> <description> [<type library>]): what Windows tells of a program, or of a
# library, which has its type library as a resource.
function(tessarlorn_version_resource target file description)
  get_filename_component(name ${file} NAME_WE)
  set(file_type VFT_APP)
  set(type_library_line "")
  set(more_values "")
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  if(ARGC GREATER 3)
    set(file_type VFT_DLL)
    set(type_library_line "1 TYPELIB \"${ARGV3}\"")
    set(more_values "      VALUE \"OLESelfRegister\", \"\"")
    set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${ARGV3})
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()

# tessarlorn_library(<name> <folder>...): the static library tessarlorn_<name>, alias tessarlorn::<name>, of some rooms.
# A name whose rooms have no source makes no target.
function(tessarlorn_library name)
  tessarlorn_sources(sources ${ARGN})
  if(NOT sources)
    return()
  endif()
  add_library(tessarlorn_${name} STATIC ${sources})
  add_library(tessarlorn::${name} ALIAS tessarlorn_${name})
  set_target_properties(tessarlorn_${name} PROPERTIES EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ON)
  target_compile_features(tessarlorn_${name} PUBLIC cxx_std_20)
  target_include_directories(
    tessarlorn_${name}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
           $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated> $<INSTALL_INTERFACE:include>)
  tessarlorn_warnings(tessarlorn_${name})
  tessarlorn_unity(tessarlorn_${name})
  # Each of the libraries for Windows is a build of its own; this takes a third off it.
  if(WIN32)
    target_precompile_headers(
      tessarlorn_${name} PRIVATE <algorithm> <array> <charconv> <cstdint> <functional> <map> <memory> <optional> <set>
      <span> <sstream> <string> <string_view> <unordered_map> <utility> <variant> <vector>)
    # GCC 12 forgets then that std::string is not ours, and warns of copies inside it that cannot be. Builds without
    # precompiled headers have these warnings.
    target_compile_options(
      tessarlorn_${name}
      PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
  endif()
endfunction()

# tessarlorn_executable(<name> <source>...): an executable with the whole component, every driver there is, the schema
# and the sample data.
function(tessarlorn_executable name)
  add_executable(${name} ${ARGN})
  foreach(library IN ITEMS component objects tsql embedded odbc ado schema samples)
    if(TARGET tessarlorn::${library})
      target_link_libraries(${name} PRIVATE tessarlorn::${library})
    endif()
  endforeach()
  tessarlorn_warnings(${name})
endfunction()

# tessarlorn_embed(<name> <folder> <patterns> <header> <span> <function>): adds to the library of that name a source with
# the function, which the header declares. It answers the files of the folder, each as its name and its text.
function(tessarlorn_embed name folder patterns header span function)
  list(TRANSFORM patterns PREPEND ${folder}/ OUTPUT_VARIABLE globs)
  file(GLOB files CONFIGURE_DEPENDS ${globs})
  set(script ${PROJECT_SOURCE_DIR}/cmake/embed_files.cmake)
  set(output ${PROJECT_BINARY_DIR}/generated/${name}_texts.cpp)
  string(REPLACE ";" "," list "${files}")
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -D FILES=${list} -D HEADER=${header} -D SPAN=${span} -D FUNCTION=${function} -D
            OUTPUT=${output} -P ${script}
    DEPENDS ${files} ${script}
    COMMENT "Embedding ${folder}"
    VERBATIM)
  target_sources(tessarlorn_${name} PRIVATE ${output})
endfunction()
