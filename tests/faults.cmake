# Faults the page survives: the reader killed or restarted, the settings and report folders
# unusable or taken away while it runs. A record no reader would write: tst_setuptab, and the
# tick harness's corpus (fuzz/).

# A crash at every step of a save: the suite stands before the C library's write, fsync and
# rename to count them, and kills a child of itself at each.
opm_add_test(tst_faults faults/tst_faults.cpp)
target_link_libraries(tst_faults PRIVATE ${CMAKE_DL_LIBS})
target_compile_definitions(tst_faults PRIVATE LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>")
add_dependencies(tst_faults lumenProbe)
