# The plug-in shell: host contract, reader control, device paths and the platform stand-ins.

opm_add_test(tst_opmplugin shell/tst_opmplugin.cpp shell/shellTestSupport.h)
target_link_libraries(tst_opmplugin PRIVATE pluginverify)
target_compile_definitions(tst_opmplugin PRIVATE OPM_PLUGIN_FILE="$<TARGET_FILE:opmplugin>")
add_dependencies(tst_opmplugin opmplugin)

opm_add_test(tst_readercontrol shell/tst_readercontrol.cpp shell/shellTestSupport.h)

opm_add_test(tst_platform shell/tst_platform.cpp)

# The product's own device root: this suite must not link the test support library, which
# brings a root of its own.
add_executable(tst_devicepaths shell/tst_devicepaths.cpp ${PROJECT_SOURCE_DIR}/src/devicePaths.cpp)
target_include_directories(tst_devicepaths PRIVATE ${PROJECT_SOURCE_DIR}/src
                                                   ${CMAKE_CURRENT_SOURCE_DIR}/support)
# Widgets for the toolkit helpers' headers only.
target_link_libraries(tst_devicepaths PRIVATE opmroot_product OpmQt::Widgets OpmQt::Test)
target_compile_definitions(tst_devicepaths PRIVATE
    OPM_PRODUCT_PLUGIN_FILE="$<TARGET_FILE:opmplugin>"
    OPM_PRODUCT_PROGRAM_FILE="$<TARGET_FILE:opm>"
    OPM_DEMO_PLUGIN_FILE="$<TARGET_FILE:opmplugin_demo>"
    OPM_DEMO_ROOT_PATH="${OPM_DEMO_ROOT}"
    OPM_READER_STAND_IN_FILE="$<TARGET_FILE:readerStandIn>")
add_dependencies(tst_devicepaths opmplugin opm opmplugin_demo)
add_test(NAME tst_devicepaths COMMAND tst_devicepaths ${OPM_QTEST_ARGS})
set_tests_properties(tst_devicepaths PROPERTIES
    TIMEOUT ${OPM_TEST_TIMEOUT}
    ENVIRONMENT "QTEST_FUNCTION_TIMEOUT=60000")
