# Qt 4 only: the host that scripts/install-test.sh starts on the unpacked bundle. It loads the
# plug-in file it is given, so it links no product code, only the interface.
add_executable(opminstallhost install/opminstallhost.cpp)
target_link_libraries(opminstallhost PRIVATE brovaplatform OpmQt::Widgets)
