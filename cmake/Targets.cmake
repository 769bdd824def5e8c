# Helpers that make a target of whatever sources its folders hold. A folder that holds none is no error.
include_guard()

# wattlark_sources(OUT BASE FOLDERS folder...): the .cpp files below BASE/folder, windows left out.
function(wattlark_sources out base)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "FOLDERS")
  set(found)
  foreach(folder IN LISTS arg_FOLDERS)
    file(GLOB_RECURSE files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${base}/${folder}/*.cpp")
    list(APPEND found ${files})
  endforeach()
  list(FILTER found EXCLUDE REGEX "/forms/")
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# wattlark_library(NAME SOURCES file... LINKS target... [INCLUDES folder...])
# A static library, or an interface one of nothing but headers.
function(wattlark_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS;INCLUDES")
  if(arg_SOURCES)
    add_library(${name} STATIC ${arg_SOURCES})
    set(scope PUBLIC)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${arg_INCLUDES})
  target_link_libraries(${name} ${scope} ${arg_LINKS})
endfunction()

# wattlark_qt(TARGET): runs moc and rcc for a target that has sources.
function(wattlark_qt name)
  get_target_property(type ${name} TYPE)
  if(NOT type STREQUAL "INTERFACE_LIBRARY")
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  endif()
endfunction()
