# Gives tessarlorn::component (the operations) and tessarlorn::embedded (the embedded database).
include(CMakeFindDependencyMacro)
find_dependency(SQLite3)
include(${CMAKE_CURRENT_LIST_DIR}/TessarlornTargets.cmake)
