# Defines what `cmake --install` installs: headers, library, CMake package, pkg-config file, tool, simulator, documents.

include(CMakePackageConfigHelpers)

set(KORO_INSTALL_PACKAGEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
set(KORO_INSTALL_PRODUCERDIR ${CMAKE_INSTALL_LIBDIR}/${PROJECT_NAME})

# The include folders of the object library are not for consumers, so the package names its own.
set(KORO_INSTALL_LIBRARIES zvr_koro)
set(KORO_INSTALL_PACKAGES ${PROJECT_NAME})
set(KORO_INSTALL_HEADERS ${PROJECT_SOURCE_DIR}/include/koro)
set_target_properties(zvr_koro PROPERTIES EXPORT_NAME koro)
if(TARGET zvr_koro_image)
    list(APPEND KORO_INSTALL_LIBRARIES zvr_koro_image)
    list(APPEND KORO_INSTALL_PACKAGES ${PROJECT_NAME}_image)
    list(APPEND KORO_INSTALL_HEADERS ${PROJECT_SOURCE_DIR}/image/include/koro)
    set_target_properties(zvr_koro_image PROPERTIES EXPORT_NAME image)
endif()
foreach(library IN LISTS KORO_INSTALL_LIBRARIES)
    target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
install(TARGETS ${KORO_INSTALL_LIBRARIES} EXPORT ${PROJECT_NAME}Targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT ${PROJECT_NAME}Targets NAMESPACE zvr:: DESTINATION ${KORO_INSTALL_PACKAGEDIR})
install(DIRECTORY ${KORO_INSTALL_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/${PROJECT_NAME}Config.cmake.in
    ${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake
    INSTALL_DESTINATION ${KORO_INSTALL_PACKAGEDIR} PATH_VARS KORO_INSTALL_PRODUCERDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake ${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake
    DESTINATION ${KORO_INSTALL_PACKAGEDIR})

# The file finds the prefix from its own location, so the tree may be installed anywhere and moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(KORO_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
    file(RELATIVE_PATH KORO_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(PREPEND KORO_PC_PREFIX "\${pcfiledir}/")
    string(REGEX REPLACE "/$" "" KORO_PC_PREFIX ${KORO_PC_PREFIX})
endif()
cmake_path(APPEND KORO_PC_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND KORO_PC_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
cmake_path(APPEND KORO_PC_PRODUCERDIR "\${prefix}" ${KORO_INSTALL_PRODUCERDIR})
foreach(package IN LISTS KORO_INSTALL_PACKAGES)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${package}.pc.in ${PROJECT_BINARY_DIR}/${package}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

if(KORO_TOOLS OR KORO_DEVELOPER)
    file(RELATIVE_PATH library_from_tool /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(koro_tool PROPERTIES INSTALL_RPATH $ORIGIN/${library_from_tool})
    install(TARGETS koro_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(KORO_TOOL_REFERENCE)
        install(DIRECTORY ${KORO_TOOL_REFERENCE}/man1 DESTINATION ${CMAKE_INSTALL_MANDIR})
        install(FILES ${KORO_TOOL_REFERENCE}/completions/koro
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    endif()
    install(TARGETS zvr_koro_simulator LIBRARY DESTINATION ${KORO_INSTALL_PRODUCERDIR})
    # Its cameras name these files.
    get_property(descriptions GLOBAL PROPERTY KORO_SIMULATED_CAMERA_DESCRIPTIONS)
    install(FILES ${descriptions} DESTINATION ${KORO_INSTALL_PRODUCERDIR})
endif()

# The pages and the examples lie to each other as they do in the sources, so that their links lead somewhere.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md ${PROJECT_SOURCE_DIR}/SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/changes/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/changes)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
    FILES_MATCHING PATTERN "*.c" PATTERN "*.h" PATTERN "*.cpp" PATTERN "*.hpp" PATTERN "*.xml" PATTERN "*.bin")
