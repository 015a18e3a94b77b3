# Writes the C++ source that holds the texts of some files, see tessarlorn_embed in targets.cmake.
# cmake -D FILES=<file>,... -D HEADER=<header> -D SPAN=<type> -D FUNCTION=<name> -D OUTPUT=<file> -P embed_files.cmake
# With FOLDER in place of FILES all files of the folder; with neither, none.
string(REPLACE "," ";" files "${FILES}")
if(FOLDER)
  file(GLOB files ${FOLDER}/*)
endif()
list(SORT files)
set(items "")
foreach(file IN LISTS files)
  file(READ ${file} text)
  get_filename_component(name ${file} NAME)
  string(APPEND items "      {\"${name}\", R\"embedded(${text})embedded\"sv},\n")
endforeach()
if(items STREQUAL "")
  set(body "  return {};\n")
else()
  # A compiler need not count the length of a text that says it is a view.
  set(body "  using namespace std::string_view_literals;\n  static constexpr ${SPAN}::value_type kFiles[] = {\n${items}  };\n  return kFiles;\n")
endif()
file(WRITE ${OUTPUT} "#include \"${HEADER}\"\n\n${SPAN} ${FUNCTION}() {\n${body}}\n")
