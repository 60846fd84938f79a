# brevan_target(TARGET): what every target of ours is built with.
function(brevan_target target)
  set_target_properties(${target} PROPERTIES CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2 -Werror)
  if(BREVAN_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${BREVAN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${BREVAN_SANITIZE})
  else()
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2 -fstack-protector-strong>)
  endif()
endfunction()

# brevan_shared_library(TARGET): additionally, a shared library that stays in the process once it is loaded, because a
# background rescan may still be running in it when the application unloads it.
function(brevan_shared_library target)
  brevan_target(${target})
  target_link_options(${target} PRIVATE -Wl,-z,nodelete -Wl,-z,relro -Wl,-z,now)
  if(NOT BREVAN_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

# brevan_exports(TARGET FILE): the shared library exports what that version script says, and no instance of a template beside.
function(brevan_exports target file)
  target_link_options(${target} PRIVATE -Wl,--version-script=${file})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${file})
endfunction()

# brevan_test_target(TARGET [HEADER...]): a test program. The test library's headers, and others that all its sources include, are
# compiled once; tests are not optimised, for nothing depends on their speed: both together save two thirds of their build time.
function(brevan_test_target target)
  brevan_target(${target})
  target_compile_options(${target} PRIVATE -O0 $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>)
  target_precompile_headers(${target} PRIVATE <gmock/gmock.h> <gtest/gtest.h> ${ARGN})
  if(BREVAN_SANITIZE MATCHES thread)
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/ThreadSanitizer.cpp)
  endif()
endfunction()
