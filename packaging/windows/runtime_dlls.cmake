# Install script: the DLLs that VELMORA_LOADED_FILES (the programs and plugins) load, and the
# DLLs those load in turn, from VELMORA_DLL_DIR, beside the programs. Names are matched without
# case, as Windows does (CMake's own file(GET_RUNTIME_DEPENDENCIES) lower-cases them and then
# misses Qt6Core.dll on a case-sensitive file system). What the folder lacks comes with Windows.

# Lower-case name -> path of every DLL the folder offers.
file(GLOB dlls "${VELMORA_DLL_DIR}/*.dll")
foreach(dll IN LISTS dlls)
  get_filename_component(name "${dll}" NAME)
  string(TOLOWER "${name}" key)
  set(offer_${key} "${dll}")
endforeach()

set(queue ${VELMORA_LOADED_FILES})
set(from_windows "")
while(queue)
  list(POP_FRONT queue file)
  execute_process(COMMAND ${VELMORA_OBJDUMP} -p "${file}" OUTPUT_VARIABLE dump RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "objdump could not read ${file}")
  endif()
  string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${dump}")
  foreach(import IN LISTS imports)
    string(REGEX REPLACE "DLL Name: " "" name "${import}")
    string(STRIP "${name}" name)
    string(TOLOWER "${name}" key)
    if(DEFINED seen_${key})
      continue()
    endif()
    set(seen_${key} ON)
    if(DEFINED offer_${key})
      list(APPEND queue "${offer_${key}}")
      file(INSTALL "${offer_${key}}" DESTINATION "${CMAKE_INSTALL_PREFIX}")
    else()
      list(APPEND from_windows ${key})
    endif()
  endforeach()
endwhile()
# The runtime and Qt's plugins come with their symbols (libstdc++ alone is 23 MB): not needed
# to run.
file(GLOB_RECURSE shipped_dlls "${CMAKE_INSTALL_PREFIX}/*.dll")
foreach(dll IN LISTS shipped_dlls)
  execute_process(COMMAND ${VELMORA_STRIP} --strip-unneeded "${dll}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()

list(SORT from_windows)
list(JOIN from_windows " " from_windows)
message(STATUS "From Windows: ${from_windows}")
