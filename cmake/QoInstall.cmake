# Installing: the libraries with their public headers, and a package for find_package(QoAudioComponentsUI). Also the
# check that every public header compiles alone (target all_verify_interface_header_sets). Included when all targets are
# known.
include(CMakePackageConfigHelpers)

set(QO_EXPORTED_LIBRARIES kro qocinterface qoc qohost QoAudioComponentsUI)
if(QO_BUILD_SDL)
    list(APPEND QO_EXPORTED_LIBRARIES krosdl)
endif()
set(QO_INSTALLED_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/QoAudioComponentsUI)
set(QO_INSTALLED_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/QoAudioComponentsUI)

# The <layer>_api targets of a folder and all below it.
function(qo_find_layers folder result)
    get_property(layers DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    list(FILTER layers INCLUDE REGEX "_api$")
    get_property(subfolders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
    foreach(subfolder IN LISTS subfolders)
        qo_find_layers(${subfolder} below)
        list(APPEND layers ${below})
    endforeach()
    set(${result} ${layers} PARENT_SCOPE)
endfunction()

# Makes a layer's public headers known to CMake, for the check and for installing. False when it has none.
function(qo_add_public_headers layer result)
    get_target_property(folder ${layer} SOURCE_DIR)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${folder}/include/*.h)
    if(headers)
        target_sources(${layer} INTERFACE FILE_SET HEADERS BASE_DIRS ${folder}/include FILES ${headers})
        set_target_properties(${layer} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    endif()
    set(${result} ${headers} PARENT_SCOPE)
endfunction()

# The layers that the libraries show; the workbench's own are not installed.
set(installed)
foreach(library IN LISTS QO_EXPORTED_LIBRARIES)
    get_target_property(links ${library} INTERFACE_LINK_LIBRARIES)
    list(FILTER links INCLUDE REGEX "_api$")
    list(APPEND installed ${links})
    # The version of the shared library's interface; every minor version may change it before 1.0.
    set_target_properties(${library} PROPERTIES VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
endforeach()
# What the public headers themselves take.
target_compile_features(krocore_api INTERFACE cxx_std_20)
target_link_libraries(krocore_api INTERFACE Boost::headers)

qo_find_layers(${CMAKE_SOURCE_DIR} layers)
foreach(layer IN LISTS layers)
    qo_add_public_headers(${layer} headers)
    if(NOT layer IN_LIST installed)
        continue()
    endif()
    if(headers)
        install(TARGETS ${layer} EXPORT QoAudioComponentsUITargets FILE_SET HEADERS DESTINATION ${QO_INSTALLED_HEADERS})
    else()
        install(TARGETS ${layer} EXPORT QoAudioComponentsUITargets)
    endif()
endforeach()

install(TARGETS ${QO_EXPORTED_LIBRARIES} EXPORT QoAudioComponentsUITargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT QoAudioComponentsUITargets NAMESPACE QoAudioComponentsUI:: DESTINATION ${QO_INSTALLED_PACKAGE})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QoAudioComponentsUIConfig.cmake.in
    ${CMAKE_BINARY_DIR}/QoAudioComponentsUIConfig.cmake INSTALL_DESTINATION ${QO_INSTALLED_PACKAGE})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QoAudioComponentsUIConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QoAudioComponentsUIConfig.cmake
    ${CMAKE_BINARY_DIR}/QoAudioComponentsUIConfigVersion.cmake DESTINATION ${QO_INSTALLED_PACKAGE})
