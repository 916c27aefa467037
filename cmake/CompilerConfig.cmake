# What every target of the house is compiled with; link it privately.
find_package(Threads REQUIRED)

add_library(QVMapWarnings INTERFACE)
if(MSVC)
  target_compile_options(QVMapWarnings INTERFACE /W4 /utf-8 /permissive- /Zc:preprocessor)
else()
target_compile_options(QVMapWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wshadow                # a shadowed name reads as another variable
  -Wconversion            # sizes come from files: every narrowing is to be seen
  -Wno-sign-conversion    # ... but signed sizes meet unsigned containers everywhere
  -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wimplicit-fallthrough)
endif()

if(QVMAP_SANITIZE)
  add_compile_options(-fsanitize=${QVMAP_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    -fno-sanitize=vptr) # it reads type information, and the toolkit has none
  add_link_options(-fsanitize=${QVMAP_SANITIZE})
endif()

if(WIN32)
  add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00)
  if(MINGW)
    enable_language(RC)
  endif()
endif()

# Has a program take UTF-8 and paths of any length where the system asks for that in the program's manifest.
function(qvmap_program Name)
  set(Folder "${CMAKE_SOURCE_DIR}/Standalone/Engine/Windows")
  if(MINGW)
    target_sources(${Name} PRIVATE "${Folder}/Program.rc")
    set_source_files_properties("${Folder}/Program.rc" TARGET_DIRECTORY ${Name}
      PROPERTIES OBJECT_DEPENDS "${Folder}/Program.manifest")
  elseif(WIN32)
    target_sources(${Name} PRIVATE "${Folder}/Program.manifest")
  endif()
endfunction()

find_program(QVMAP_CCACHE ccache)
if(QVMAP_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QVMAP_CCACHE}")
endif()
