# The data the measurement page stands on: the reader's record, bounded texts, the setup file,
# the result store and the gauge.
opm_add_test(tst_sharerecord data/tst_sharerecord.cpp)
opm_add_test(tst_fixedtext data/tst_fixedtext.cpp)
opm_add_test(tst_setupconfig data/tst_setupconfig.cpp)
opm_add_test(tst_resultstore data/tst_resultstore.cpp)
opm_add_test(tst_offsetbar data/tst_offsetbar.cpp)
opm_add_test(tst_setuptexts data/tst_setuptexts.cpp)
