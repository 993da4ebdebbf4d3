# What `cmake --install` lays out, below any prefix:
#
#   lib/tdkviz/           the staged tree: the player finds everything else beside itself, so the tree can be moved
#   bin/tdkplay           a link to the player in it
#   include/tdkviz/       the contracts and the kit; include/tdkviz-platform/ is the <windows.h> of the platform layer
#   lib/cmake/, lib/pkgconfig/   for authors of plug-ins
#   share/                desktop entry, icons, manual page, completion, documents, the template of a plug-in

# The tree is tdkviz's own; folders for one architecture are for libraries that others link to.
set(CMAKE_INSTALL_LIBDIR lib CACHE STRING "Libraries")
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(tree ${CMAKE_INSTALL_LIBDIR}/tdkviz)
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(made ${PROJECT_BINARY_DIR}/install)

# The staged tree.
set(plugins "")
get_property(targets DIRECTORY ${PROJECT_SOURCE_DIR}/visualizations PROPERTY BUILDSYSTEM_TARGETS)
foreach(target ${targets})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL MODULE_LIBRARY)
    list(APPEND plugins ${target})
    # Those with windows of their own find the layer in the folder above.
    get_target_property(libraries ${target} LINK_LIBRARIES)
    if(tdkviz_system IN_LIST libraries)
      set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/..")
    endif()
  endif()
endforeach()
set_target_properties(tdkplay tdkplatform tdkviz nqrs3260 PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS tdkplay tdkplatform EXPORT tdkviz RUNTIME DESTINATION ${tree} LIBRARY DESTINATION ${tree})
install(TARGETS tdkviz nqrs3260 LIBRARY DESTINATION ${tree})
install(TARGETS ${plugins} LIBRARY DESTINATION ${tree}/Visualizations)
if(TARGET qzcolor)
  install(TARGETS qzcolor qzltcolor LIBRARY DESTINATION ${tree}/Codecs)
endif()
install(DIRECTORY ${TDKVIZ_STAGE_DIR}/Help DESTINATION ${tree})
file(RELATIVE_PATH player ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/tdkviz/tdkplay)
file(MAKE_DIRECTORY ${made})
file(CREATE_LINK ${player} ${made}/tdkplay SYMBOLIC)
install(FILES ${made}/tdkplay DESTINATION ${CMAKE_INSTALL_BINDIR})

# For authors.
set_target_properties(tdkviz_contract PROPERTIES EXPORT_NAME contract)
set_target_properties(tdkviz_system PROPERTIES EXPORT_NAME system)
set_target_properties(tdkplatform PROPERTIES EXPORT_NAME platform)
install(TARGETS tdkviz_contract tdkviz_system EXPORT tdkviz)
set(config ${CMAKE_INSTALL_LIBDIR}/cmake/tdkviz)
install(EXPORT tdkviz NAMESPACE tdkviz:: FILE tdkvizTargets.cmake DESTINATION ${config})
write_basic_package_version_file(${made}/tdkvizConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES cmake/tdkvizConfig.cmake cmake/plugin.map ${made}/tdkvizConfigVersion.cmake DESTINATION ${config})
install(DIRECTORY include/tdkviz DESTINATION include)
install(DIRECTORY platform/include/ DESTINATION include/tdkviz-platform)
set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH up ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" up ${up})
foreach(name tdkviz tdkviz-platform)
  configure_file(${packaging}/${name}.pc.in ${made}/${name}.pc @ONLY)
  install(FILES ${made}/${name}.pc DESTINATION ${pkgconfig})
endforeach()
install(DIRECTORY templates DESTINATION ${CMAKE_INSTALL_DATADIR}/tdkviz)

# For the desktop and the shell.
install(FILES ${packaging}/tdkplay.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${packaging}/tdkplay.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${packaging}/tdkplay.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/256x256/apps)
execute_process(COMMAND gzip -9n INPUT_FILE ${packaging}/tdkplay.1 OUTPUT_FILE ${made}/tdkplay.1.gz
  COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${packaging}/tdkplay.1)
install(FILES ${made}/tdkplay.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${packaging}/tdkplay.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME tdkplay)
install(FILES README.md ${packaging}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The Debian package, which packaging/package makes.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tdkviz)
set(CPACK_PACKAGE_CONTACT "tdkviz maintainers <maintainers@tdkviz.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${TDKVIZ_STAGE_DIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pipewire-pulse | pulseaudio")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ffmpeg, xdg-utils")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "music player that shows the music")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"tdkplay plays audio files and shows them: plug-ins turn what is heard at that
moment into pictures, and feedback effects zoom, turn, blur and fade what was
there before. It plays in a window, and renders songs to videos and pictures
without one.

The visualization add-on itself, its plug-ins, and headers and a CMake package
for those who write plug-ins of their own come with it.")
include(CPack)
