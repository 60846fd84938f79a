# Where things go: component runtime is what an application needs to run, devel what is needed to build one, simulator the
# simulated array. The two platform libraries stay out of the way of the system's, in a folder of their own.
include(CMakePackageConfigHelpers)

set(brevan_private_libdir ${CMAKE_INSTALL_LIBDIR}/brevan)
set(brevan_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/brevan)
set(brevan_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS brevan
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT devel)
install(TARGETS Q7common PlimLogAPI LIBRARY DESTINATION ${brevan_private_libdir} COMPONENT runtime)

# install_settings(FILE): puts a settings file in place, but leaves one that is there already: it may have been edited.
function(install_settings file)
  cmake_path(GET file FILENAME name)
  install(CODE "
    set(folder \"${brevan_private_libdir}\")
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
    if(EXISTS \"\$ENV{DESTDIR}\${folder}/${name}\")
      message(STATUS \"Kept: \$ENV{DESTDIR}\${folder}/${name}\")
    else()
      file(INSTALL \"${file}\" DESTINATION \"\${folder}\")
    endif()" COMPONENT runtime)
endfunction()
install_settings(${PROJECT_SOURCE_DIR}/platform/plimlog/Brevan_API.ini)
install_settings(${PROJECT_SOURCE_DIR}/platform/q7common/transport.ini)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/brevan DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT devel
  FILES_MATCHING PATTERN "*.h")

if(TARGET brevan-array-sim)
  install(TARGETS brevan-array-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT simulator)
  install(FILES ${PROJECT_SOURCE_DIR}/simulator/brevan-array-sim.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT simulator)
  install(FILES ${PROJECT_BINARY_DIR}/simulator/brevan-array-sim.service DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
    COMPONENT simulator)
endif()

# The CMake package: find_package(brevan) gives the target brevan::brevan.
set(brevan_library ${CMAKE_INSTALL_LIBDIR}/${CMAKE_SHARED_LIBRARY_PREFIX}brevan${CMAKE_SHARED_LIBRARY_SUFFIX})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/brevan-config.cmake.in
  ${PROJECT_BINARY_DIR}/install/brevan-config.cmake INSTALL_DESTINATION ${brevan_package_dir}
  PATH_VARS brevan_library CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/brevan-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/install/brevan-config.cmake ${PROJECT_BINARY_DIR}/install/brevan-config-version.cmake
  DESTINATION ${brevan_package_dir} COMPONENT devel)

# The pkg-config file finds the prefix from its own place, so that an installed tree can be moved.
file(RELATIVE_PATH brevan_prefix_from_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH brevan_libdir_in_prefix ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH brevan_includedir_in_prefix ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(${PROJECT_SOURCE_DIR}/cmake/brevan.pc.in ${PROJECT_BINARY_DIR}/install/brevan.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/install/brevan.pc DESTINATION ${brevan_pkgconfig_dir} COMPONENT devel)
