# The command line, the two programs that share it, and the simulator.
include_guard()

find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)

wattlark_sources(cliSources "src" FOLDERS cli)
wattlark_library(wattlark_cli SOURCES ${cliSources}
  LINKS wattlark_platform CLI11::CLI11 nlohmann_json::nlohmann_json)
target_compile_definitions(wattlark_cli PRIVATE
  WATTLARK_VERSION_FILE_URL="${WATTLARK_VERSION_FILE_URL}")

set(mainSource "${PROJECT_SOURCE_DIR}/src/main.cpp")
file(GLOB mainFound CONFIGURE_DEPENDS "${mainSource}")
if(mainFound)
  add_executable(wattlark-headless "${mainSource}")
  target_link_libraries(wattlark-headless PRIVATE wattlark_cli)

  add_executable(wattlark "${mainSource}")
  target_link_libraries(wattlark PRIVATE wattlark_cli)
  if(TARGET wattlark_forms)
    file(GLOB windowSources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/cli/forms/*.cpp")
    target_sources(wattlark PRIVATE ${windowSources})
    target_compile_definitions(wattlark PRIVATE WATTLARK_WITH_WINDOW
      WATTLARK_HELP_URL="${WATTLARK_HELP_URL}"
      WATTLARK_WEBSITE_URL="${WATTLARK_WEBSITE_URL}")
    target_link_libraries(wattlark PRIVATE wattlark_forms)
  endif()

  # Where the program looks for its sound first; an installed one finds it in its share folder.
  configure_file("${PROJECT_SOURCE_DIR}/resources/notice.wav" "${CMAKE_CURRENT_BINARY_DIR}/notice.wav" COPYONLY)
endif()

add_subdirectory("${PROJECT_SOURCE_DIR}/tools/sim")
