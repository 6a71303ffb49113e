# Windows: one folder with the programs, the DLLs and Qt plugins they load, DejaVu fonts (Wine
# has no Lucida), the README and the sample; CPack packs it into an NSIS installer, and
# ./build.sh windows makes the zip from the same folder.

# The window opens no console; the icon is the program's first icon resource.
set_target_properties(velmora PROPERTIES WIN32_EXECUTABLE ON)
configure_file(${CMAKE_CURRENT_LIST_DIR}/velmora.rc.in ${CMAKE_BINARY_DIR}/velmora.rc @ONLY)
target_sources(velmora PRIVATE ${CMAKE_BINARY_DIR}/velmora.rc)

set(VELMORA_PROGRAMS velmora velmora-chart velmora-index velmora-import)
install(TARGETS ${VELMORA_PROGRAMS} RUNTIME DESTINATION .)
install(FILES README.md DESTINATION .)
# Installed, the programs find no data beside them and use %APPDATA%\velmora; the sample is there
# to copy from.
install(DIRECTORY sample/ DESTINATION sample)

# Qt loads these at run time, from folders named as their kind beside the executable.
install(FILES $<TARGET_FILE:Qt6::QWindowsIntegrationPlugin> DESTINATION platforms)
install(FILES $<TARGET_FILE:Qt6::QWindowsVistaStylePlugin> DESTINATION styles)

set(VELMORA_DEJAVU /usr/share/fonts/truetype/dejavu)
install(FILES ${VELMORA_DEJAVU}/DejaVuSans.ttf ${VELMORA_DEJAVU}/DejaVuSans-Bold.ttf
              ${VELMORA_DEJAVU}/DejaVuSansMono.ttf ${VELMORA_DEJAVU}/DejaVuSansMono-Bold.ttf
        DESTINATION fonts)
install(FILES /usr/share/doc/fonts-dejavu-core/copyright DESTINATION fonts RENAME LICENSE.txt)

# Exactly the DLLs the programs and plugins load, from the prefix (deps.sh puts the compiler's
# runtime DLLs there too).
set(VELMORA_LOADED_FILES)
foreach(target IN LISTS VELMORA_PROGRAMS ITEMS Qt6::QWindowsIntegrationPlugin
                                              Qt6::QWindowsVistaStylePlugin)
  list(APPEND VELMORA_LOADED_FILES $<TARGET_FILE:${target}>)
endforeach()
install(CODE "
  set(VELMORA_OBJDUMP \"${CMAKE_OBJDUMP}\")
  set(VELMORA_STRIP \"${CMAKE_STRIP}\")
  set(VELMORA_DLL_DIR \"${VELMORA_WIN_PREFIX}/bin\")
  set(VELMORA_LOADED_FILES \"$<JOIN:${VELMORA_LOADED_FILES},;>\")
")
install(SCRIPT ${CMAKE_CURRENT_LIST_DIR}/runtime_dlls.cmake)

set(CPACK_GENERATOR NSIS)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_FILE_NAME velmora-${CPACK_PACKAGE_VERSION}-win64)
set(CPACK_PACKAGE_INSTALL_DIRECTORY Velmora)
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
set(CPACK_NSIS_DEFINES "Target amd64-unicode")
set(CPACK_NSIS_PACKAGE_NAME Velmora)
set(CPACK_NSIS_DISPLAY_NAME Velmora)
set(CPACK_NSIS_MUI_ICON ${CMAKE_CURRENT_LIST_DIR}/velmora.ico)
set(CPACK_NSIS_MUI_UNIICON ${CMAKE_CURRENT_LIST_DIR}/velmora.ico)
set(CPACK_NSIS_INSTALLED_ICON_NAME velmora.exe)
# The Start-menu entry.
set(CPACK_PACKAGE_EXECUTABLES velmora Velmora)
# The page the installer shows before it installs: what Velmora is for, where its data goes.
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_CURRENT_LIST_DIR}/installer-note.txt)
include(CPack)
