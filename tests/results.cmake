# The Result tab and the HTML report.
opm_add_test(tst_resultpage results/tst_resultpage.cpp results/resultRows.h)
opm_add_test(tst_report results/tst_report.cpp results/resultRows.h)
# The report is also read back by html5lib, the parsing algorithm of browsers.
target_compile_definitions(tst_report PRIVATE
    REPORT_GOLDEN_DIR="${CMAKE_CURRENT_SOURCE_DIR}/results/golden"
    REPORT_TABLES_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/results/reportTables.py")
