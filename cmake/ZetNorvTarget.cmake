# What every target of this project is built with: the language level, the warnings, the sanitizers
# and hidden visibility.
function(zetnorv_target target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wformat=2
    # GCC 12 sees overlapping copies in its own std::string when it optimises.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
  # Under the sanitizers GCC 12 takes parts of its own std::function for uninitialised, so warnings
  # are errors only without them.
  if(ZETNORV_DEVELOPER AND NOT ZETNORV_SANITIZE)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # Null references are part of the interface (old hosts hand them in), so binding one is no finding;
  # the use of a null address still ends the program. The check of virtual tables opens a pipe to see
  # whether an object can be read: where a test has used up the descriptors, it takes every object
  # for a broken one.
  if(ZETNORV_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${ZETNORV_SANITIZE} -fno-sanitize=null,vptr -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${ZETNORV_SANITIZE})
  endif()
endfunction()

# A shared library with a public header set: versioned, installed with its headers, exported as part
# of `export_set`.
#
#   zetnorv_shared_library(<target> EXPORT <set> NAME <exported name> INCLUDES <dir> FOLDER <subdir>)
function(zetnorv_shared_library target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "EXPORT;NAME;INCLUDES;FOLDER" "")
  zetnorv_target(${target})
  # Under the sanitizers the tests' own code is not worth optimising: that takes most of the build.
  if(ZETNORV_SANITIZE)
    target_compile_options(${target} PRIVATE -O1)
  endif()
  # Counted atomically: some tests work with threads.
  if(ZETNORV_COVERAGE)
    target_compile_options(${target} PRIVATE
      --coverage -fprofile-update=atomic -fprofile-abs-path)
    target_link_options(${target} PRIVATE --coverage)
  endif()
  file(GLOB headers CONFIGURE_DEPENDS "${arg_INCLUDES}/*.h")
  target_sources(${target} PUBLIC
    FILE_SET HEADERS BASE_DIRS "${arg_INCLUDES}" FILES ${headers})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${arg_NAME}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN"
    VERIFY_INTERFACE_HEADER_SETS ${ZETNORV_DEVELOPER})
  if(UNIX AND NOT APPLE)
    set(own_names "${PROJECT_SOURCE_DIR}/cmake/OwnNames.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${own_names}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${own_names}")
  endif()
  install(TARGETS ${target}
    EXPORT ${arg_EXPORT}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${arg_FOLDER}")
endfunction()

# Installs the CMake package `package` for the targets of `export_set`, with a version file.
function(zetnorv_package package namespace)
  set(destination "${CMAKE_INSTALL_LIBDIR}/cmake/${package}")
  install(EXPORT ${package}Targets NAMESPACE ${namespace} DESTINATION "${destination}")
  configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/${package}Config.cmake.in"
    "${CMAKE_CURRENT_BINARY_DIR}/${package}Config.cmake"
    INSTALL_DESTINATION "${destination}")
  write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/${package}ConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES
    "${CMAKE_CURRENT_BINARY_DIR}/${package}Config.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/${package}ConfigVersion.cmake"
    DESTINATION "${destination}")
endfunction()
