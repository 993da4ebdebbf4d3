# How the rooms of the house become targets.

# The contract headers: all that a plug-in or a host needs.
add_library(tdkviz_contract INTERFACE)
target_include_directories(tdkviz_contract INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
target_compile_features(tdkviz_contract INTERFACE cxx_std_20)

# What a module that speaks Win32 needs: the system itself on Windows, the platform layer elsewhere.
add_library(tdkviz_system INTERFACE)
target_link_libraries(tdkviz_system INTERFACE tdkviz_contract)
if(WIN32)
  target_compile_definitions(tdkviz_system INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX)
  target_link_libraries(tdkviz_system INTERFACE gdi32 advapi32 user32 ole32 comctl32)
  # The runtime that mingw links by default has _stat32 under its older name.
  target_link_options(tdkviz_system INTERFACE -Wl,--defsym,__imp__stat32=__imp__stat)
else()
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

# tdkviz_resources(TARGET FILE.rc): the resources of a module or program. What stands beside the .rc file is
# taken for its parts: pictures, and headers with the numbers. Elsewhere than on Windows the very same file is
# compiled too, and carried as a note that the platform layer reads.
if(WIN32)
  enable_language(RC)
else()
  find_program(TDKVIZ_WINDRES x86_64-w64-mingw32-windres)
  find_program(TDKVIZ_LLVM_RC NAMES llvm-rc llvm-rc-14 llvm-rc-15 llvm-rc-16)
endif()
function(tdkviz_resources target file)
  get_filename_component(file ${file} ABSOLUTE)
  get_filename_component(folder ${file} DIRECTORY)
  file(GLOB parts CONFIGURE_DEPENDS ${folder}/*.bmp ${folder}/*.h)
  if(WIN32)
    set_source_files_properties(${file} PROPERTIES OBJECT_DEPENDS "${parts}" INCLUDE_DIRECTORIES ${folder})
    target_sources(${target} PRIVATE ${file})
    return()
  endif()
  set(includes -I ${folder} -I ${PROJECT_SOURCE_DIR}/platform/include)
  set(preprocessed ${CMAKE_CURRENT_BINARY_DIR}/${target}.i.rc)
  set(compiled ${CMAKE_CURRENT_BINARY_DIR}/${target}.res)
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.cpp)
  if(TDKVIZ_WINDRES)
    # The preprocessing is done, and the plain -E of any compiler leaves the text alone.
    set(compile ${TDKVIZ_WINDRES} -O res -I ${folder} --preprocessor=${CMAKE_CXX_COMPILER}
      --preprocessor-arg=-E --preprocessor-arg=-xc ${preprocessed} ${compiled})
  elseif(TDKVIZ_LLVM_RC)
    set(compile ${TDKVIZ_LLVM_RC} /no-preprocess /I ${folder} /FO ${compiled} ${preprocessed})
  else()
    message(FATAL_ERROR "No resource compiler: neither x86_64-w64-mingw32-windres nor llvm-rc")
  endif()
  add_custom_command(OUTPUT ${compiled}
    COMMAND ${CMAKE_CXX_COMPILER} -E -P -xc -DRC_INVOKED ${includes} ${file} -o ${preprocessed}
    COMMAND ${compile}
    DEPENDS ${file} ${parts} ${PROJECT_SOURCE_DIR}/platform/include/winresrc.h
    BYPRODUCTS ${preprocessed} VERBATIM)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/resources.cpp.in ${generated} @ONLY)
  set_property(SOURCE ${generated} PROPERTY OBJECT_DEPENDS ${compiled})
  target_sources(${target} PRIVATE ${generated})
endfunction()
