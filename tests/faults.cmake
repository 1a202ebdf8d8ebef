# Faults the page survives: the reader killed or restarted, the settings and report folders
# unusable or taken away while it runs. A record no reader would write: tst_opmreading, and the
# tick harness's corpus (fuzz/).

set(OPM_FAULTS_PROBE ${CMAKE_CURRENT_SOURCE_DIR}/support/opmPageProbe.h)

opm_add_test(tst_readerfaults faults/tst_readerfaults.cpp ${OPM_FAULTS_PROBE})
target_compile_definitions(tst_readerfaults PRIVATE LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>")
add_dependencies(tst_readerfaults lumenProbe)

opm_add_test(tst_filefaults faults/tst_filefaults.cpp ${OPM_FAULTS_PROBE})

# The page's boxes: the host destroying the page, its window or the plug-in while one is open;
# never a second reference dialog over the first.
opm_add_test(tst_boxlifetime faults/tst_boxlifetime.cpp ${OPM_FAULTS_PROBE})

# A kill right after the reader's start, with a shell that is slow to start the reader.
add_library(slowReaderStart MODULE support/slowReaderStart.cpp)
target_link_libraries(slowReaderStart PRIVATE ${CMAKE_DL_LIBS})
# Preloaded into the system's shell, which carries no sanitizer runtime.
target_compile_options(slowReaderStart PRIVATE -fno-sanitize=all)
target_link_options(slowReaderStart PRIVATE -fno-sanitize=all)
opm_add_test(tst_readerstart faults/tst_readerstart.cpp)
target_compile_definitions(tst_readerstart PRIVATE
    SLOW_READER_START_LIBRARY="$<TARGET_FILE:slowReaderStart>")
add_dependencies(tst_readerstart slowReaderStart)
