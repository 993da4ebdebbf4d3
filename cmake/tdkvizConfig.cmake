# find_package(tdkviz): for those who write plug-ins.
#
#   tdkviz::contract   the headers <tdkviz/...>; all that most plug-ins need
#   tdkviz::system     the same, and <windows.h>: the system's own on Windows, the platform layer elsewhere
#   tdkviz::tdkplay    the player
#   tdkviz_add_plugin(NAME [WINDOWS] sources...)   builds NAME.tkv; WINDOWS gives it <windows.h>
include(${CMAKE_CURRENT_LIST_DIR}/tdkvizTargets.cmake)
set(tdkviz_PLUGIN_MAP ${CMAKE_CURRENT_LIST_DIR}/plugin.map)

function(tdkviz_add_plugin name)
  cmake_parse_arguments(PARSE_ARGV 1 PLUGIN WINDOWS "" "")
  add_library(${name} MODULE ${PLUGIN_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE $<IF:$<BOOL:${PLUGIN_WINDOWS}>,tdkviz::system,tdkviz::contract>)
  # A unique symbol would keep the library from ever being unloaded.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  target_link_options(${name} PRIVATE -Wl,--version-script=${tdkviz_PLUGIN_MAP})
  # The player has loaded the platform layer long before, so there is nothing to be found.
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX .tkv CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON SKIP_BUILD_RPATH ON)
endfunction()
