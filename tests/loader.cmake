# Qt 4 only: the plug-in taken through Qt 4's own QPluginLoader, as the set's shell takes it.

# The product's code working below the folder the loading suite names (OPM_TEST_DEVICE_ROOT):
# a plug-in file of its own, with no code of the suite in it.
add_library(opmplugin_testroot MODULE support/envDeviceRoot.cpp)
target_include_directories(opmplugin_testroot PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(opmplugin_testroot PRIVATE opmcore)

opm_add_test(tst_qt4loader loader/tst_qt4loader.cpp)
target_compile_definitions(tst_qt4loader PRIVATE
    OPM_PLUGIN_FILE="$<TARGET_FILE:opmplugin>"
    OPM_TESTROOT_PLUGIN_FILE="$<TARGET_FILE:opmplugin_testroot>")
add_dependencies(tst_qt4loader opmplugin opmplugin_testroot)
