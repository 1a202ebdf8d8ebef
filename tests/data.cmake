# The data the measurement page stands on: bounded texts and the reading's text, the gauge.
opm_add_test(tst_texts data/tst_texts.cpp)
opm_add_test(tst_offsetbar data/tst_offsetbar.cpp)
