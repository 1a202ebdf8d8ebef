# The Setup tab: the live reading and saving it; the setup, its controls and its restore.

opm_add_test(tst_opmreading page/tst_opmreading.cpp)
opm_add_test(tst_opmsetup page/tst_opmsetup.cpp)
target_link_libraries(tst_opmsetup PRIVATE ${CMAKE_DL_LIBS})
