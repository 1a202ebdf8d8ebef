# The Setup tab: live reading, layout, saving, setup controls, reference level, restore.

set(OPM_PAGE_PROBE ${CMAKE_CURRENT_SOURCE_DIR}/support/opmPageProbe.h)

opm_add_test(tst_opmreading page/tst_opmreading.cpp ${OPM_PAGE_PROBE})
opm_add_test(tst_opmsave page/tst_opmsave.cpp ${OPM_PAGE_PROBE})
opm_add_test(tst_opmcontrols page/tst_opmcontrols.cpp ${OPM_PAGE_PROBE})
opm_add_test(tst_opmreference page/tst_opmreference.cpp ${OPM_PAGE_PROBE})
opm_add_test(tst_opmrestore page/tst_opmrestore.cpp ${OPM_PAGE_PROBE})
opm_add_test(tst_opmlayout page/tst_opmlayout.cpp ${OPM_PAGE_PROBE})
target_link_libraries(tst_opmlayout PRIVATE ${CMAKE_DL_LIBS})
