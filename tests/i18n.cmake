# The translations: every text fits its widget in each language.
opm_add_test(tst_fit i18n/tst_fit.cpp)
target_compile_definitions(tst_fit PRIVATE OPM_QM_DIR="${OPM_QM_DIR}")
add_dependencies(tst_fit opm_translations)
