# How the rooms of the house become targets.

# The contract headers: all that a plug-in or a host needs.
add_library(tdkviz_contract INTERFACE)
target_include_directories(tdkviz_contract INTERFACE ${PROJECT_SOURCE_DIR}/include)

# What a module that speaks Win32 needs: the system itself on Windows, the platform layer elsewhere.
add_library(tdkviz_system INTERFACE)
target_link_libraries(tdkviz_system INTERFACE tdkviz_contract)
if(WIN32)
  target_compile_definitions(tdkviz_system INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX)
  target_link_libraries(tdkviz_system INTERFACE gdi32 advapi32 user32 ole32)
  # The runtime that mingw links by default has _stat32 under its older name.
  target_link_options(tdkviz_system INTERFACE -Wl,--defsym,__imp__stat32=__imp__stat)
else()
  target_include_directories(tdkviz_system INTERFACE ${PROJECT_SOURCE_DIR}/platform/include)
  target_link_libraries(tdkviz_system INTERFACE tdkplatform)
endif()

# tdkviz_room(NAME [LINK targets...]): a room of src/ as a static library; it may link only to the rooms
# below it, so an include that points up fails to link.
function(tdkviz_room name)
  cmake_parse_arguments(ROOM "" "" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/Exports\\.cpp$")
  add_library(tdkviz_${name} STATIC ${sources})
  target_include_directories(tdkviz_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(tdkviz_${name} PUBLIC tdkviz_system ${ROOM_LINK})
endfunction()

# tdkviz_exports(TARGET NAME): nothing but what cmake/NAME.map names is visible outside of the library.
function(tdkviz_exports target name)
  if(NOT WIN32)
    set(map ${PROJECT_SOURCE_DIR}/cmake/${name}.map)
    target_link_options(${target} PRIVATE -Wl,--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
endfunction()

# tdkviz_plugin(NAME sources...): a visualization plug-in NAME.tkv in the staged tree.
function(tdkviz_plugin name)
  add_library(${name} MODULE ${ARGN})
  target_link_libraries(${name} PRIVATE tdkviz_contract)
  tdkviz_exports(${name} plugin)
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".tkv"
    LIBRARY_OUTPUT_DIRECTORY ${TDKVIZ_STAGE_DIR}/Visualizations
    RUNTIME_OUTPUT_DIRECTORY ${TDKVIZ_STAGE_DIR}/Visualizations)
endfunction()
