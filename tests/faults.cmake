# Faults the page survives: the reader killed or restarted, the settings and report folders
# unusable or taken away while it runs. A record no reader would write: tst_opmreading, and the
# tick harness's corpus (fuzz/).

opm_add_test(tst_readerfaults faults/tst_readerfaults.cpp)
target_compile_definitions(tst_readerfaults PRIVATE LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>")
add_dependencies(tst_readerfaults lumenProbe)

opm_add_test(tst_filefaults faults/tst_filefaults.cpp)
