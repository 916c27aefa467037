# What every target of the house is compiled with; link it privately.
find_package(Threads REQUIRED)

add_library(QVMapWarnings INTERFACE)
target_compile_options(QVMapWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wshadow                # a shadowed name reads as another variable
  -Wconversion            # sizes come from files: every narrowing is to be seen
  -Wno-sign-conversion    # ... but signed sizes meet unsigned containers everywhere
  -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wimplicit-fallthrough)

if(QVMAP_SANITIZE)
  add_compile_options(-fsanitize=${QVMAP_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    -fno-sanitize=vptr) # it reads type information, and the toolkit has none
  add_link_options(-fsanitize=${QVMAP_SANITIZE})
endif()

find_program(QVMAP_CCACHE ccache)
if(QVMAP_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QVMAP_CCACHE}")
endif()
