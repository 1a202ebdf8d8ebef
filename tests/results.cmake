# The Result tab and the HTML report.
opm_add_test(tst_resultpage results/tst_resultpage.cpp results/resultRows.h ${OPM_PAGE_PROBE})
opm_add_test(tst_report results/tst_report.cpp results/resultRows.h ${OPM_PAGE_PROBE})

# End to end with the simulated reader; the report is read back by html5lib, the parsing
# algorithm of browsers.
opm_add_test(tst_reportendtoend results/tst_reportendtoend.cpp ${OPM_PAGE_PROBE})
target_compile_definitions(tst_reportendtoend PRIVATE
    LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>"
    REPORT_TABLES_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/results/reportTables.py")
add_dependencies(tst_reportendtoend lumenProbe)

# Markup characters in every text from outside the program, read back by html5lib.
opm_add_test(tst_reporthostile results/tst_reporthostile.cpp ${OPM_PAGE_PROBE})
target_compile_definitions(tst_reporthostile PRIVATE
    REPORT_TABLES_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/results/reportTables.py")
