# The Setup tab: the live reading and saving it; the setup, its controls and its restore.

set(OPM_PAGE_PROBE ${CMAKE_CURRENT_SOURCE_DIR}/support/opmPageProbe.h)

opm_add_test(tst_opmreading page/tst_opmreading.cpp ${OPM_PAGE_PROBE})
opm_add_test(tst_opmsetup page/tst_opmsetup.cpp ${OPM_PAGE_PROBE})
target_link_libraries(tst_opmsetup PRIVATE ${CMAKE_DL_LIBS})
