# Writes the C++ source that holds the texts of some files, see tessarlorn_embed in targets.cmake.
# cmake -D FILES=<file>,... -D HEADER=<header> -D SPAN=<type> -D FUNCTION=<name> -D OUTPUT=<file> -P embed_files.cmake
string(REPLACE "," ";" files "${FILES}")
list(SORT files)
set(items "")
foreach(file IN LISTS files)
  file(READ ${file} text)
  get_filename_component(name ${file} NAME)
  string(APPEND items "      {\"${name}\", R\"embedded(${text})embedded\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"${HEADER}\"

${SPAN} ${FUNCTION}() {
  static constexpr ${SPAN}::value_type kFiles[] = {
${items}  };
  return kFiles;
}
")
