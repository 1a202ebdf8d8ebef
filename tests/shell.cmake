# The plug-in shell: host contract, reader control, device paths and the platform stand-ins.

opm_add_test(tst_platform shell/tst_platform.cpp)
