// Plug-in files that the shell stand-in must refuse: FAKE_PLUGIN_VARIANT picks what is wrong
// with the verification text. None of them gets as far as its root object.
#include <QtGlobal>

#define FAKE_TEXT(version, debug, key)                                                             \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=" version "\ndebug=" debug "\nbuildkey=" key

#if FAKE_PLUGIN_VARIANT == 0 // an older Qt
#define FAKE_SECTION_TEXT FAKE_TEXT("4.7.0", "true", "i386 linux g++-4 full-config")
#elif FAKE_PLUGIN_VARIANT == 1 // another build key
#define FAKE_SECTION_TEXT FAKE_TEXT("4.8.4", "true", "x86_64 linux g++-4 full-config")
#else // each copy is acceptable, but the two are not the same
#define FAKE_SECTION_TEXT FAKE_TEXT("4.8.4", "false", "i386 linux g++-4 full-config")
#define FAKE_FUNCTION_TEXT FAKE_TEXT("4.8.4", "true", "i386 linux g++-4 full-config")
#endif

#ifndef FAKE_FUNCTION_TEXT
#define FAKE_FUNCTION_TEXT FAKE_SECTION_TEXT
#endif

extern "C" Q_DECL_EXPORT __attribute__((section(".qtplugin"), used))
const char fake_verification_data[] = FAKE_SECTION_TEXT;

extern "C" Q_DECL_EXPORT const char* qt_plugin_query_verification_data()
{
    return FAKE_FUNCTION_TEXT;
}
