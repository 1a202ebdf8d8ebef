# The Result tab and the HTML report.
opm_add_test(tst_resultpage results/tst_resultpage.cpp results/resultRows.h ${OPM_PAGE_PROBE})
opm_add_test(tst_report results/tst_report.cpp results/resultRows.h ${OPM_PAGE_PROBE})
