// Plug-in files that the shell stand-in must refuse: FAKE_PLUGIN_VARIANT picks what is wrong
// with the verification text: 0 an older Qt, 1 another build key, 2 copies that differ (each
// acceptable on its own). None of them gets as far as its root object.
#include <QtGlobal>

#define FAKE_TEXT(version, debug, key)                                                             \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=" version "\ndebug=" debug "\nbuildkey=" key
#define FAKE_KEY "i386 linux g++-4 full-config"

#if FAKE_PLUGIN_VARIANT == 0
#define FAKE_SECTION_TEXT FAKE_TEXT("4.7.0", "true", FAKE_KEY)
#elif FAKE_PLUGIN_VARIANT == 1
#define FAKE_SECTION_TEXT FAKE_TEXT("4.8.4", "true", "x86_64 linux g++-4 full-config")
#else
#define FAKE_SECTION_TEXT FAKE_TEXT("4.8.4", "false", FAKE_KEY)
#endif

extern "C" Q_DECL_EXPORT __attribute__((section(".qtplugin"), used))
const char fake_verification_data[] = FAKE_SECTION_TEXT;

extern "C" Q_DECL_EXPORT const char* qt_plugin_query_verification_data()
{
    return FAKE_PLUGIN_VARIANT == 2 ? FAKE_TEXT("4.8.4", "true", FAKE_KEY) : FAKE_SECTION_TEXT;
}
