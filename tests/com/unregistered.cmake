# In a prefix where the library is not registered: its use by the manifest, and its neighbours, whose names would be in
# the way of other tests.
tessarlorn_sources(neighbours_sources ${CMAKE_CURRENT_SOURCE_DIR}/neighbours)
tessarlorn_com_executable(com_neighbours_test ${neighbours_sources} ${CMAKE_CURRENT_SOURCE_DIR}/client/typed_object.cpp)

# The ERP's network library is looked for beside the program.
set(network_folder ${folder}/venappsvr)
add_library(com_venappsvr SHARED venappsvr/venappsvr.cpp venappsvr/venappsvr.def)
set_target_properties(com_venappsvr PROPERTIES OUTPUT_NAME venappsvr PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${network_folder})
target_link_libraries(com_venappsvr PRIVATE tessarlorn::com_base)
target_link_options(com_venappsvr PRIVATE -static)
tessarlorn_warnings(com_venappsvr)
add_custom_command(TARGET com_neighbours_test POST_BUILD
                   COMMAND ${CMAKE_COMMAND} -E make_directory ${network_folder}
                   COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:com_neighbours_test> ${network_folder}/with_network.exe
                   VERBATIM)

# A program with the library and its manifest beside it, and one whose own manifest depends on that.
set(program_folder ${folder}/program)
set(architecture $<IF:$<EQUAL:${bits},64>,amd64,x86>)
file(GENERATE OUTPUT ${program_folder}/with_manifest.exe.manifest CONTENT
  "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\"><dependency><dependentAssembly>
<assemblyIdentity type=\"win32\" name=\"TessarLornPickingAndDelivery.Assembly\" version=\"0.1.0.0\"
 processorArchitecture=\"${architecture}\"/></dependentAssembly></dependency></assembly>\n")
add_custom_target(
  com_program ALL
  COMMAND ${CMAKE_COMMAND} -E make_directory ${program_folder}
  COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:com_client_test> $<TARGET_FILE:tessarlorn_com>
          $<TARGET_FILE_DIR:tessarlorn_com>/TessarLornPickingAndDelivery.Assembly.manifest ${program_folder}
  COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:com_client_test> ${program_folder}/with_manifest.exe
  DEPENDS com_client_test tessarlorn_com
  VERBATIM)

# tessarlorn_unregistered_test(<name> <variable=value;...> <command>...)
function(tessarlorn_unregistered_test name variables)
  tessarlorn_com_test(${name} ${ARGN})
  set_tests_properties(com/${name} PROPERTIES FIXTURES_REQUIRED com_bare_prefix ENVIRONMENT
    "PATH=${wine_path};WINEPREFIX=${folder}/bare_prefix;WINEDEBUG=-all;TESSARLORN_LIBRARY_FOLDER=Z:${program_folder};${variables}")
endfunction()

tessarlorn_unregistered_test(bare_prefix "" ${make_prefix})
set_tests_properties(com/bare_prefix PROPERTIES FIXTURES_REQUIRED "" FIXTURES_SETUP com_bare_prefix)
tessarlorn_unregistered_test(side_by_side "" ${WINE} ${program_folder}/com_client_test.exe
                             --gtest_filter=*SideBySideTest.*)
tessarlorn_unregistered_test(program_manifest "" ${WINE} ${program_folder}/with_manifest.exe
                             --gtest_filter=ProgramManifestTest.*)
# Names that one has registered would be found by the others.
set(address "TESSARLORN_TEST_ADDRESS=203.0.113.7;TESSARLORN_WANTED_ADDRESS=203.0.113.7")
tessarlorn_unregistered_test(neighbours "${address}" ${WINE} ${network_folder}/with_network.exe
                             --gtest_filter=RegisteredTest.*)
tessarlorn_unregistered_test(neighbours_default "TESSARLORN_WANTED_ADDRESS=10.0.0.5" ${WINE}
                             $<TARGET_FILE:com_neighbours_test> --gtest_filter=DefaultTest.*)
tessarlorn_unregistered_test(neighbours_no_address "" ${WINE} ${network_folder}/with_network.exe
                             --gtest_filter=DefaultTest.*)
set_tests_properties(com/side_by_side com/program_manifest com/neighbours com/neighbours_default com/neighbours_no_address
                     PROPERTIES RESOURCE_LOCK com_bare_prefix)
# The installer is a program of 32 bits.
if(bits EQUAL 32)
  tessarlorn_unregistered_test(installer "" Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/installer.py
                               ${PROJECT_SOURCE_DIR} ${library} ${folder})
  set_tests_properties(com/installer PROPERTIES RESOURCE_LOCK com_bare_prefix)
endif()
