# The tools: the shell stand-in, the simulated reader and the record tool, run as the programs
# they are.

# Plug-in files the shell stand-in must refuse; see tools/fakePlugin.cpp for the variants.
set(OPM_FAKE_PLUGINS wrongversion wrongbuildkey sectiondiffers)
set(OPM_FAKE_PLUGIN_DEFINITIONS)
set(variant 0)
foreach(fake ${OPM_FAKE_PLUGINS})
    add_library(fakeplugin_${fake} MODULE tools/fakePlugin.cpp)
    target_compile_definitions(fakeplugin_${fake} PRIVATE FAKE_PLUGIN_VARIANT=${variant})
    target_link_libraries(fakeplugin_${fake} PRIVATE OpmQt::Core)
    string(TOUPPER ${fake} upper)
    list(APPEND OPM_FAKE_PLUGIN_DEFINITIONS FAKE_PLUGIN_${upper}="$<TARGET_FILE:fakeplugin_${fake}>")
    math(EXPR variant "${variant} + 1")
endforeach()

# The record tool's reader check runs against the simulated reader and against a reader that
# breaks one rule; its trend log and chart as they run, their files read back by the library.
add_executable(brokenReader tools/brokenReader.cpp)
target_link_libraries(brokenReader PRIVATE opmshare)
set_target_properties(brokenReader PROPERTIES AUTOMOC OFF)

opm_add_test(tst_tools tools/tst_tools.cpp)
target_link_libraries(tst_tools PRIVATE opmcheckedreader opmrecordtrend)
target_compile_definitions(tst_tools PRIVATE
    LUMENPROBE_PATH="$<TARGET_FILE:lumenProbe>"
    OPMSHELL_PATH="$<TARGET_FILE:opmshell>"
    OPMRECORD_PATH="$<TARGET_FILE:opmrecord>"
    BROKENREADER_PATH="$<TARGET_FILE:brokenReader>"
    DEMO_PLUGIN_PATH="$<TARGET_FILE:opmplugin_demo>"
    ${OPM_FAKE_PLUGIN_DEFINITIONS})
add_dependencies(tst_tools opmshell opmplugin_demo lumenProbe opmrecord brokenReader)
foreach(fake ${OPM_FAKE_PLUGINS})
    add_dependencies(tst_tools fakeplugin_${fake})
endforeach()
