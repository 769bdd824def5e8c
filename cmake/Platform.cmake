# The one place that chooses, for each system, the folders of adapters and what they link.
include_guard()

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Network SerialPort)

if(WIN32)
  set(adapterFolders qt win32)
  set(adapterLibraries advapi32 winmm)
else()
  find_package(SQLite3 REQUIRED)
  find_package(ZLIB REQUIRED)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(CANBERRA REQUIRED IMPORTED_TARGET libcanberra)
  set(adapterFolders qt sqlite xdg linux)
  set(adapterLibraries SQLite::SQLite3 ZLIB::ZLIB)
endif()

wattlark_sources(platformSources "src/platform" FOLDERS ${adapterFolders})
wattlark_library(wattlark_platform SOURCES ${platformSources}
  LINKS wattlark_core Qt6::Core Qt6::Network Qt6::SerialPort ${adapterLibraries})
wattlark_qt(wattlark_platform)

# The windows; without their sources the program is built without them.
file(GLOB_RECURSE formSources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/platform/qtwidgets/*.cpp")
file(GLOB formFolders CONFIGURE_DEPENDS LIST_DIRECTORIES true "${PROJECT_SOURCE_DIR}/src/*/forms")
list(FILTER formFolders EXCLUDE REGEX "/cli/forms$")
foreach(folder IN LISTS formFolders)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS "${folder}/*.cpp")
  list(APPEND formSources ${files})
endforeach()
if(formSources)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Gui Widgets Svg PrintSupport)
  # Debian's Qt6 build of QCustomPlot; elsewhere the one build there is carries the plain name.
  find_package(QCustomPlotQt6 QUIET)
  if(QCustomPlotQt6_FOUND)
    set(plotLibrary QCustomPlotQt6::QCustomPlotQt6)
  else()
    find_package(QCustomPlot REQUIRED)
    set(plotLibrary QCustomPlot::QCustomPlot)
  endif()
  wattlark_library(wattlark_forms SOURCES ${formSources} "${PROJECT_SOURCE_DIR}/resources/wattlark.qrc"
    LINKS wattlark_platform Qt6::Widgets Qt6::Svg Qt6::PrintSupport ${plotLibrary})
  wattlark_qt(wattlark_forms)
  if(TARGET PkgConfig::CANBERRA) # its headers: it is loaded with the first sound
    target_include_directories(wattlark_forms PRIVATE
      $<TARGET_PROPERTY:PkgConfig::CANBERRA,INTERFACE_INCLUDE_DIRECTORIES>)
  endif()
endif()
