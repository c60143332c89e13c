# The Designer test loads forms through QUiLoader, which finds KvRTB through the plugin built in
# <build>/plugins/designer.
find_package(Qt6 REQUIRED COMPONENTS UiTools)
if(NOT TARGET kvrtbdesigner)
  message(FATAL_ERROR "tests/designer needs the Designer plugin: install Qt's Designer module "
                      "(Debian qt6-tools-dev) or turn KVRTB_BUILD_TESTS off")
endif()
target_link_libraries(test_designer PRIVATE Qt6::UiTools)
target_compile_definitions(test_designer PRIVATE KVRTB_DESIGNER_PLUGIN_DIR="${KVRTB_DESIGNER_PLUGIN_DIR}")
add_dependencies(test_designer kvrtbdesigner)
