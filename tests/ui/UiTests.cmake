# Window tests: QtTest, one executable per window, run offscreen. The
# presentation test links the presentation library alone.
find_package(Qt6 REQUIRED COMPONENTS Test)
file(GLOB UI_TEST_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/ui/tst_*.cpp)
foreach(source ${UI_TEST_SOURCES})
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  if(name STREQUAL "tst_Presentation")
    target_link_libraries(${name} PRIVATE varnoth_presentation Qt6::Test)
  else()
    target_link_libraries(${name} PRIVATE varnoth_ui Qt6::Test)
  endif()
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE
    VARNOTH_EXAMPLES="${PROJECT_SOURCE_DIR}/data/examples")
  if(name STREQUAL "tst_frmMAT" OR name STREQUAL "tst_frmCalib" OR name STREQUAL "tst_frmLuvane"
     OR name STREQUAL "tst_PublicationFigures")
    # The reconstruction window's files are checked against the batch runner's.
    target_compile_definitions(${name} PRIVATE VARNOTH_BATCH="$<TARGET_FILE:varnoth-batch>")
    add_dependencies(${name} varnoth-batch)
  endif()
  add_test(NAME ui.${name} COMMAND ${name})
  set_tests_properties(ui.${name} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endforeach()
