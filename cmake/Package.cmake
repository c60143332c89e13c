# The CMake package a host finds with find_package(KvRichTextBox): the exported target
# KvRichTextBox::KvRichTextBox, its configuration and version files.
include(CMakePackageConfigHelpers)
set(KVRTB_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KvRichTextBox)

install(EXPORT KvRichTextBoxTargets NAMESPACE KvRichTextBox:: DESTINATION ${KVRTB_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KvRichTextBoxConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KvRichTextBoxConfig.cmake INSTALL_DESTINATION ${KVRTB_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KvRichTextBoxConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KvRichTextBoxConfig.cmake
              ${PROJECT_BINARY_DIR}/KvRichTextBoxConfigVersion.cmake
        DESTINATION ${KVRTB_CMAKE_DIR})
