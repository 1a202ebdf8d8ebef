// Plug-ins for the shell stand-in's tests. FAKE_PLUGIN_VARIANT picks what is wrong with one:
// its verification text, where the text is found, or what its root object is.
#include "utilinterface.h"

#include <QObject>
#include <QWidget>

#include <cstdio>

#define FAKE_GOOD_TEXT                                                                             \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=true\n"                             \
    "buildkey=i386 linux g++-4 full-config"

#if FAKE_PLUGIN_VARIANT == 1 // wrong Qt version
#define FAKE_SECTION_TEXT                                                                          \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.7.0\ndebug=true\n"                             \
    "buildkey=i386 linux g++-4 full-config"
#elif FAKE_PLUGIN_VARIANT == 2 // another build key
#define FAKE_SECTION_TEXT                                                                          \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=true\n"                             \
    "buildkey=x86_64 linux g++-4 full-config"
#elif FAKE_PLUGIN_VARIANT == 3 // another pattern
#define FAKE_SECTION_TEXT                                                                          \
    "pattern=QT_PLUGIN_DATA\nversion=4.8.4\ndebug=true\nbuildkey=i386 linux g++-4 full-config"
#elif FAKE_PLUGIN_VARIANT == 4 // section and function disagree
#define FAKE_SECTION_TEXT                                                                          \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=false\n"                            \
    "buildkey=i386 linux g++-4 full-config"
#define FAKE_FUNCTION_TEXT FAKE_GOOD_TEXT
#elif FAKE_PLUGIN_VARIANT == 5 // no section
#define FAKE_NO_SECTION
#elif FAKE_PLUGIN_VARIANT == 6 // no verification function
#define FAKE_NO_FUNCTION
#elif FAKE_PLUGIN_VARIANT == 7 // the root object is not a UtilInterface
#define FAKE_PLAIN_ROOT
#endif

#ifndef FAKE_SECTION_TEXT
#define FAKE_SECTION_TEXT FAKE_GOOD_TEXT
#endif
#ifndef FAKE_FUNCTION_TEXT
#define FAKE_FUNCTION_TEXT FAKE_SECTION_TEXT
#endif

// Says on standard output what the shell asked, so that a test can follow the calls.
class FakeUtil : public QObject, public UtilInterface
{
    Q_OBJECT
    Q_INTERFACES(UtilInterface)
public:
    QString getPluginID() const override { return QStringLiteral("test.FakeUtil"); }
    QString getPluginName() const override { return QStringLiteral("FakeUtil"); }
    QString getPluginVersion() const override { return QStringLiteral("0.1"); }
    QString getPluginBuilder() const override { return QStringLiteral("tests"); }
    bool bkgRun(QWidget*) override { return true; }
    bool start(QWidget* parent) override
    {
        trace("start", parent);
        if (!m_window && parent)
            m_window = new QWidget(parent);
        return true;
    }
    bool stop() override { return trace("stop"); }
    void terminate() override { trace("terminate"); }
    void show() override { trace("show"); }
    void hide() override { trace("hide"); }
    void update() override { trace("update"); }
    QObject* getObject() override { return m_window; }
    void setCallerID(int callerId) override { m_callerId = callerId; }

private:
    bool trace(const char* call, const QWidget* parent = nullptr)
    {
        if (parent)
            std::printf("fake: %s parent %dx%d\n", call, parent->width(), parent->height());
        else
            std::printf("fake: %s\n", call);
        std::fflush(stdout);
        return true;
    }

    QWidget* m_window = nullptr;
};

#ifndef FAKE_NO_SECTION
extern "C" Q_DECL_EXPORT __attribute__((section(".qtplugin"), used))
const char fake_verification_data[]
    = FAKE_SECTION_TEXT;
#endif

#ifndef FAKE_NO_FUNCTION
extern "C" Q_DECL_EXPORT const char* qt_plugin_query_verification_data()
{
    return FAKE_FUNCTION_TEXT;
}
#endif

extern "C" Q_DECL_EXPORT QObject* qt_plugin_instance()
{
#ifdef FAKE_PLAIN_ROOT
    static QObject* root = new QObject;
#else
    static QObject* root = new FakeUtil;
#endif
    return root;
}

#include "fakePlugin.moc"
