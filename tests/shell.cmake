# The plug-in shell: host contract, the reader's life, the host against open boxes, and the
# device paths.

# A kill right after the reader's start needs a shell that is slow to start the reader.
add_library(slowReaderStart MODULE support/slowReaderStart.cpp)
target_link_libraries(slowReaderStart PRIVATE ${CMAKE_DL_LIBS})
# Preloaded into the system's shell, which carries no sanitizer runtime.
target_compile_options(slowReaderStart PRIVATE -fno-sanitize=all)
target_link_options(slowReaderStart PRIVATE -fno-sanitize=all)

opm_add_test(tst_opmplugin shell/tst_opmplugin.cpp)
target_compile_definitions(tst_opmplugin PRIVATE
    SLOW_READER_START_LIBRARY="$<TARGET_FILE:slowReaderStart>")
add_dependencies(tst_opmplugin slowReaderStart)

# The product's own device root, as the plug-in and the stand-alone program have it.
opm_add_test(tst_devicepaths PRODUCT_ROOT shell/tst_devicepaths.cpp
    ${PROJECT_SOURCE_DIR}/src/devicePaths.cpp)
target_compile_definitions(tst_devicepaths PRIVATE
    OPM_PRODUCT_PLUGIN_FILE="$<TARGET_FILE:opmplugin>"
    OPM_PRODUCT_PROGRAM_FILE="$<TARGET_FILE:opm>"
    OPM_DEMO_PLUGIN_FILE="$<TARGET_FILE:opmplugin_demo>"
    OPM_DEMO_ROOT_PATH="${OPM_DEMO_ROOT}"
    OPM_READER_STAND_IN_FILE="$<TARGET_FILE:readerStandIn>")
add_dependencies(tst_devicepaths opmplugin opm opmplugin_demo)
