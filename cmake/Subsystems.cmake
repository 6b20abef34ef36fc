# tvx_subsystem(name folder deps...)
# Builds every .cpp of one source folder (not its subfolders) into the static library tvx_<name>.
# Sources are globbed so that adding a file needs no edit here.
set(TVX_SUBSYSTEM_TARGETS "" CACHE INTERNAL "")

function(tvx_subsystem name folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.h)
  # The objects are compiled once: into the static library that tests link, and into the
  # component library.
  add_library(tvx_${name}_obj OBJECT ${sources} ${headers})
  target_include_directories(tvx_${name}_obj PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(tvx_${name}_obj PUBLIC ${ARGN})
  add_library(tvx_${name} STATIC $<TARGET_OBJECTS:tvx_${name}_obj>)
  target_include_directories(tvx_${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(tvx_${name} PUBLIC ${ARGN})
  set(TVX_SUBSYSTEM_TARGETS ${TVX_SUBSYSTEM_TARGETS} tvx_${name}_obj CACHE INTERNAL "")
endfunction()

# tvx_test(name folder libs...)
# One GoogleTest executable per test folder and its subfolders, registered with CTest test by test.
function(tvx_test name folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE ${ARGN} GTest::gtest GTest::gtest_main GTest::gmock)
  target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/tests/support)
  target_compile_definitions(test_${name} PRIVATE
    TVX_SOURCE_DIR="${CMAKE_SOURCE_DIR}" TVX_DATA_DIR="${CMAKE_BINARY_DIR}/bin")
  add_dependencies(test_${name} tvx_data)
  gtest_discover_tests(test_${name}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
