# The data the measurement page stands on: bounded texts, the reading's text, the result store
# and the gauge.
opm_add_test(tst_fixedtext data/tst_fixedtext.cpp)
opm_add_test(tst_readingtext data/tst_readingtext.cpp)
opm_add_test(tst_resultstore data/tst_resultstore.cpp)
opm_add_test(tst_offsetbar data/tst_offsetbar.cpp)
opm_add_test(tst_setuptexts data/tst_setuptexts.cpp)
