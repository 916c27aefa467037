# A header-only library of the system that builds. Its folder of headers is shown to the compiler alone: beside it lie
# the headers of the wrong system's C library.
function(qvmap_host_headers Target Folder Header)
  find_path(QVMAP_HEADERS_OF_${Folder} ${Folder}/${Header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(Shown "${CMAKE_BINARY_DIR}/include")
  file(MAKE_DIRECTORY "${Shown}")
  file(CREATE_LINK "${QVMAP_HEADERS_OF_${Folder}}/${Folder}" "${Shown}/${Folder}" SYMBOLIC)
  if(NOT TARGET ${Target})
    add_library(${Target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${Target} SYSTEM INTERFACE "${Shown}")
  endif()
endfunction()
