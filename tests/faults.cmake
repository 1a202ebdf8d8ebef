# Faults the page survives: the reader killed or restarted, the settings and report folders
# unusable or taken away while it runs. A record no reader would write: tst_opmreading, and the
# tick harness's corpus (fuzz/).

opm_add_test(tst_readerfaults faults/tst_readerfaults.cpp)
target_compile_definitions(tst_readerfaults PRIVATE LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>")
add_dependencies(tst_readerfaults lumenProbe)

opm_add_test(tst_filefaults faults/tst_filefaults.cpp)

# A crash at every step of a save: a library that kills a program at its Nth write, fsync or
# rename below a folder, run on the stand-alone program and on a report export, each under the
# suite's own device root.
add_library(crashAt MODULE support/crashAt.cpp)
target_link_libraries(crashAt PRIVATE ${CMAKE_DL_LIBS})
# Preloaded before the sanitizers' run-time, which it must not need.
target_compile_options(crashAt PRIVATE -fno-sanitize=all)
target_link_options(crashAt PRIVATE -fno-sanitize=all)
add_executable(opm_testroot ${PROJECT_SOURCE_DIR}/src/main.cpp support/envDeviceRoot.cpp)
target_link_libraries(opm_testroot PRIVATE opmcore)
add_executable(reportExportRun faults/reportExportRun.cpp support/envDeviceRoot.cpp)
target_link_libraries(reportExportRun PRIVATE opmcore)

opm_add_test(tst_savecrash faults/tst_savecrash.cpp)
target_compile_definitions(tst_savecrash PRIVATE CRASH_AT_LIBRARY="$<TARGET_FILE:crashAt>"
    STAND_ALONE_PATH="$<TARGET_FILE:opm_testroot>" REPORT_EXPORT_PATH="$<TARGET_FILE:reportExportRun>")
add_dependencies(tst_savecrash crashAt opm_testroot reportExportRun)
