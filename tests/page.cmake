# The Setup tab: the live reading and saving it; the setup, its controls and its restore.

opm_add_test(tst_setuptab page/tst_setuptab.cpp)
target_link_libraries(tst_setuptab PRIVATE ${CMAKE_DL_LIBS})
