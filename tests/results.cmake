# The saved readings: the store, the Result tab and the HTML report.
opm_add_test(tst_results results/tst_results.cpp)
# The report is also read back by html5lib, the parsing algorithm of browsers.
target_compile_definitions(tst_results PRIVATE
    REPORT_GOLDEN_DIR="${CMAKE_CURRENT_SOURCE_DIR}/results/golden"
    REPORT_TABLES_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/results/reportTables.py")
