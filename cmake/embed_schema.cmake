# Writes the C++ source that holds the texts of schema/*.sql.
# cmake -D FOLDER=<schema folder> -D OUTPUT=<file> -P embed_schema.cmake
file(GLOB files ${FOLDER}/*.sql)
list(SORT files)
set(items "")
foreach(file IN LISTS files)
  file(READ ${file} text)
  get_filename_component(name ${file} NAME)
  string(APPEND items "    {\"${name}\", R\"schema(${text})schema\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"schema/schema_files.h\"

namespace tessarlorn {

std::span<const SchemaFile> SchemaFiles() {
  static constexpr SchemaFile kFiles[] = {
${items}  };
  return kFiles;
}

}  // namespace tessarlorn
")
