# Faults the page survives: the reader killed or restarted, the settings and report folders
# unusable or taken away while it runs. A record no reader would write: tst_opmreading, and the
# tick harness's corpus (fuzz/).

opm_add_test(tst_readerfaults faults/tst_readerfaults.cpp)
target_compile_definitions(tst_readerfaults PRIVATE LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>")
add_dependencies(tst_readerfaults lumenProbe)

# The settings and report files unusable, and a crash at every step of a save: the suite stands
# before the C library's write, fsync and rename to count them, and kills a child of itself at
# each.
opm_add_test(tst_filefaults faults/tst_filefaults.cpp)
target_link_libraries(tst_filefaults PRIVATE ${CMAKE_DL_LIBS})
