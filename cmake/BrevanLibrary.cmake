# libbrevan.so: the objects of all folders, linked against the platform libraries that it finds in lib/brevan beside itself.
add_library(brevan SHARED)
add_library(brevan::brevan ALIAS brevan)
brevan_target(brevan_objects)
target_compile_definitions(brevan_objects PRIVATE BREVAN_BUILDING)
# A crash in somebody else's process must be readable, and the test of the binary interface reads the types; strip(1) what you ship.
target_compile_options(brevan_objects PRIVATE $<$<CONFIG:Release>:-g>)
target_include_directories(brevan_objects PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(brevan_objects PUBLIC platform_interface PkgConfig::safec Threads::Threads)

brevan_shared_library(brevan)
target_link_libraries(brevan PRIVATE brevan_objects Q7common PlimLogAPI)
target_include_directories(brevan INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
brevan_exports(brevan ${PROJECT_SOURCE_DIR}/cmake/brevan.map)
set_target_properties(brevan PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
  INSTALL_RPATH "$ORIGIN/brevan")
