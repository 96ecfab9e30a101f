# What a cross build needs from the build machine: flatc and the log tool run here, the target
# takes only the header-only libraries from the host's packages, and GoogleTest is compiled
# from Debian's sources with the target's compiler.
include(ExternalProject)

find_program(KVT_HOST_FLATC flatc NO_CMAKE_FIND_ROOT_PATH REQUIRED)
add_executable(flatbuffers::flatc IMPORTED)
set_target_properties(flatbuffers::flatc PROPERTIES IMPORTED_LOCATION ${KVT_HOST_FLATC})

# The host's headers are seen through a folder of their own: the host's whole include folder
# would put its C library ahead of the target's.
find_path(KVT_HOST_FLATBUFFERS_INCLUDE flatbuffers/flatbuffers.h NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(KVT_HOST_RAPIDJSON_INCLUDE rapidjson/document.h NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(KVT_HOST_CLI11_INCLUDE CLI/CLI.hpp NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(host_headers ${CMAKE_BINARY_DIR}/host-headers)
file(MAKE_DIRECTORY ${host_headers})
file(CREATE_LINK ${KVT_HOST_FLATBUFFERS_INCLUDE}/flatbuffers ${host_headers}/flatbuffers SYMBOLIC)
file(CREATE_LINK ${KVT_HOST_RAPIDJSON_INCLUDE}/rapidjson ${host_headers}/rapidjson SYMBOLIC)
file(CREATE_LINK ${KVT_HOST_CLI11_INCLUDE}/CLI ${host_headers}/CLI SYMBOLIC)
foreach(library flatbuffers::flatbuffers CLI11::CLI11)
  add_library(${library} INTERFACE IMPORTED)
  set_target_properties(${library} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${host_headers})
endforeach()
set(RAPIDJSON_INCLUDE_DIRS ${host_headers})

# The log tool that compiles the JSON fixtures into logs, built for the build machine from this
# same source tree unless one is given.
set(KVT_HOST_LOG_TOOL "" CACHE FILEPATH "kvt-profile-log built for the build machine (empty: build it)")
if(KVT_HOST_LOG_TOOL)
  set(KVT_LOG_TOOL ${KVT_HOST_LOG_TOOL})
else()
  set(host_build ${CMAKE_BINARY_DIR}/host-tools)
  set(KVT_LOG_TOOL ${host_build}/bin/kvt-profile-log)
  ExternalProject_Add(KvtHostLogTool
    SOURCE_DIR ${CMAKE_SOURCE_DIR}
    BINARY_DIR ${host_build}
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DKVT_BUILD_TESTS=OFF -DCMAKE_TOOLCHAIN_FILE=
    BUILD_COMMAND ${CMAKE_COMMAND} --build ${host_build} --target kvt-profile-log
    BUILD_ALWAYS ON
    BUILD_BYPRODUCTS ${KVT_LOG_TOOL}
    INSTALL_COMMAND "")
  set(KVT_LOG_TOOL_TARGET KvtHostLogTool)
endif()

if(KVT_BUILD_TESTS)
  find_path(KVT_GOOGLETEST_SOURCE googletest/src/gtest-all.cc PATHS /usr/src/googletest
            NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${KVT_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  # Our warnings are errors for our code only; GCC 12 warns falsely inside GoogleTest at -O3.
  foreach(library gtest gtest_main)
    target_compile_options(${library} PRIVATE -Wno-error)
  endforeach()
endif()

# Wine shows the build machine's root as drive Z:; tests started from another drive (their
# temporary folders are on C:) need the drive in the build tree's paths.
if(WIN32 AND CMAKE_HOST_UNIX)
  set(KVT_TEST_PATH_PREFIX "Z:")
endif()

# Wine makes its prefix on first use, which takes longer than ctest waits for a test program to
# list its tests; the build makes it instead.
if(WIN32 AND CMAKE_HOST_UNIX AND KVT_BUILD_TESTS)
  add_custom_target(KvtWinePrefix ALL COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} cmd /c exit
                    COMMENT "Preparing Wine" VERBATIM)
endif()
