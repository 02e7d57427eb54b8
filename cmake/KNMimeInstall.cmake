# Installation: the library, its headers under include/knmime/, a CMake package for
# find_package(knmime) and a pkg-config file. Included once the knmime target is complete.

install(TARGETS knmime EXPORT knmimeTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${KNMIME_PUBLIC_FOLDERS} DESTINATION ${KNMIME_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)
install(FILES ${KNMIME_GENERATED_HEADERS} DESTINATION ${KNMIME_INSTALL_INCLUDEDIR}/foundation)

# What users of a static knmime link besides it. The library itself needs only the C++
# standard library; iconv, when a layer links it and it is not part of the C library.
set(KNMIME_STATIC_DEPENDENCIES "")
set(KNMIME_PC_LIBS_PRIVATE "")
if(NOT KNMIME_SHARED AND TARGET Iconv::Iconv)
  list(APPEND KNMIME_STATIC_DEPENDENCIES Iconv)
  if(NOT Iconv_IS_BUILT_IN)
    get_filename_component(iconv_dir "${Iconv_LIBRARY}" DIRECTORY)
    string(APPEND KNMIME_PC_LIBS_PRIVATE " -L${iconv_dir} -liconv")
  endif()
endif()

install(EXPORT knmimeTargets NAMESPACE knmime:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/knmime)
configure_package_config_file(cmake/knmimeConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/knmimeConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/knmime)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/knmimeConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/knmimeConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/knmimeConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/knmime)

# knmime.pc finds the prefix from its own place (${pcfiledir}), so that it stays right
# wherever `cmake --install --prefix` puts the tree.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(KNMIME_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(KNMIME_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
  file(RELATIVE_PATH pc_to_prefix "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
  set(KNMIME_PC_PREFIX "\${pcfiledir}/${pc_to_prefix}")
  set(KNMIME_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${KNMIME_INSTALL_INCLUDEDIR}")
  set(KNMIME_PC_INCLUDEDIR "${KNMIME_INSTALL_INCLUDEDIR}")
else()
  set(KNMIME_PC_INCLUDEDIR "\${prefix}/${KNMIME_INSTALL_INCLUDEDIR}")
endif()
set(KNMIME_PC_CFLAGS "")
if(NOT KNMIME_SHARED)
  set(KNMIME_PC_CFLAGS " -DKNMIME_STATIC_DEFINE")
endif()
configure_file(cmake/knmime.pc.in ${CMAKE_CURRENT_BINARY_DIR}/knmime.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/knmime.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
