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

# Exactly the DLLs the programs and plugins load, found in the dependencies' prefix and beside
# the MinGW compiler; what neither holds comes with Windows.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libstdc++-6.dll
  OUTPUT_VARIABLE VELMORA_LIBSTDCXX OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(VELMORA_MINGW_RUNTIME_DIR "${VELMORA_LIBSTDCXX}" DIRECTORY)
install(CODE "
  set(CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM windows+pe)
  set(CMAKE_GET_RUNTIME_DEPENDENCIES_TOOL objdump)
  set(CMAKE_GET_RUNTIME_DEPENDENCIES_COMMAND ${CMAKE_OBJDUMP})
  file(GET_RUNTIME_DEPENDENCIES
    EXECUTABLES $<TARGET_FILE:velmora> $<TARGET_FILE:velmora-chart> $<TARGET_FILE:velmora-index>
                $<TARGET_FILE:velmora-import>
    MODULES $<TARGET_FILE:Qt6::QWindowsIntegrationPlugin> $<TARGET_FILE:Qt6::QWindowsVistaStylePlugin>
    DIRECTORIES ${VELMORA_WIN_PREFIX}/bin ${VELMORA_MINGW_RUNTIME_DIR}
    RESOLVED_DEPENDENCIES_VAR velmora_dlls
    UNRESOLVED_DEPENDENCIES_VAR velmora_windows_dlls)
  file(INSTALL \${velmora_dlls} DESTINATION \${CMAKE_INSTALL_PREFIX})
  list(JOIN velmora_windows_dlls \" \" velmora_windows_dlls)
  message(STATUS \"From Windows: \${velmora_windows_dlls}\")
")

set(CPACK_GENERATOR NSIS)
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
