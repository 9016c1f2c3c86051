# The desktop program: presentation (Qt Gui), windows (Qt Widgets) and main.
find_package(Qt6 REQUIRED COMPONENTS Core Gui Widgets PrintSupport)
# Figures saved as SVG drawings.
find_package(Qt6 REQUIRED COMPONENTS Svg)
set(CMAKE_AUTOMOC ON)

file(GLOB VARNOTH_PRESENTATION_SOURCES CONFIGURE_DEPENDS src/presentation/*.cpp src/presentation/*.h
  src/presentation/publication/*.cpp src/presentation/publication/*.h)
if(VARNOTH_PRESENTATION_SOURCES)
  add_library(varnoth_presentation STATIC ${VARNOTH_PRESENTATION_SOURCES})
  target_link_libraries(varnoth_presentation PUBLIC varnoth_engine Qt6::Gui Qt6::Svg)
  # varnoth-batch --figures: the same drawing functions, offscreen, in a
  # program of their own. Loading the drawing libraries takes longer than a
  # run of the EOF analysis, so varnoth-batch starts this program only for
  # the runs that ask for figures (and for its option list).
  file(GLOB VARNOTH_BATCH_FIGURE_SOURCES CONFIGURE_DEPENDS src/app/batch_figures/*.cpp)
  add_executable(varnoth-batch-figures src/app/batch/main.cpp $<TARGET_OBJECTS:varnoth_batch_steps>
                 ${VARNOTH_BATCH_FIGURE_SOURCES})
  target_link_libraries(varnoth-batch-figures PRIVATE varnoth_presentation)
  target_compile_definitions(varnoth-batch-figures PRIVATE
    VARNOTH_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/data/examples")
  target_compile_definitions(varnoth-batch PRIVATE VARNOTH_FIGURES_PROGRAM="varnoth-batch-figures")
  add_dependencies(varnoth-batch varnoth-batch-figures)
endif()

file(GLOB VARNOTH_UI_SOURCES CONFIGURE_DEPENDS src/ui/*.cpp src/ui/*.h)
if(VARNOTH_UI_SOURCES)
  add_library(varnoth_ui STATIC ${VARNOTH_UI_SOURCES})
  target_link_libraries(varnoth_ui PUBLIC varnoth_presentation Qt6::Widgets Qt6::PrintSupport)
  # Where "Open Example Data" finds the tables when the program is not installed.
  target_compile_definitions(varnoth_ui PRIVATE
    VARNOTH_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/data/examples")
  file(GLOB VARNOTH_APP_SOURCES CONFIGURE_DEPENDS src/app/*.cpp)
  if(VARNOTH_APP_SOURCES)
    add_executable(varnoth ${VARNOTH_APP_SOURCES})
    target_link_libraries(varnoth PRIVATE varnoth_ui)
  endif()
  # Renders the windows to PNG files offscreen after a scripted road.
  file(GLOB VARNOTH_SHOTS_SOURCES CONFIGURE_DEPENDS src/app/shots/*.cpp)
  if(VARNOTH_SHOTS_SOURCES)
    add_executable(varnoth-shots ${VARNOTH_SHOTS_SOURCES})
    target_link_libraries(varnoth-shots PRIVATE varnoth_ui)
    target_compile_definitions(varnoth-shots PRIVATE
      VARNOTH_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/data/examples")
  endif()
endif()

# Speed of the scatter redraw that turning the 3-D view repeats.
if(VARNOTH_BENCH AND TARGET varnoth_presentation)
  find_package(benchmark REQUIRED)
  file(GLOB VARNOTH_GUI_BENCH_SOURCES CONFIGURE_DEPENDS bench/gui/*.cpp)
  if(VARNOTH_GUI_BENCH_SOURCES)
    add_executable(varnoth_gui_bench ${VARNOTH_GUI_BENCH_SOURCES})
    target_link_libraries(varnoth_gui_bench PRIVATE varnoth_presentation benchmark::benchmark)
    target_include_directories(varnoth_gui_bench PRIVATE ${PROJECT_SOURCE_DIR}/bench)
  endif()
endif()

# The world coastline of the interpolation map, found in the source tree
# when the program is not installed.
foreach(target varnoth_ui varnoth_gui_bench varnoth-batch-figures)
  if(TARGET ${target})
    target_compile_definitions(${target} PRIVATE
      VARNOTH_COASTLINE="${PROJECT_SOURCE_DIR}/data/coastline.csv")
  endif()
endforeach()
