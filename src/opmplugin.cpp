#include "opmplugin.h"

#include "cutilwindow.h"
#include "opmMain.h"

#include <QPointer>

NerioOpmPlugin::NerioOpmPlugin() : QObject(0), m_pOpticalPowerMeter(0), m_pUtilWnd(0)
{
    bIsStarted = false;
}

NerioOpmPlugin::~NerioOpmPlugin() { bIsStarted = false; }

QString NerioOpmPlugin::getPluginID() const
{
    return QString("com.corvaneinc.CommonUtil.NerioOpmPlugin");
}

QString NerioOpmPlugin::getPluginName() const { return QString("OpticalPowerMeter"); }

QString NerioOpmPlugin::getPluginVersion() const { return QString("1.0"); }

QString NerioOpmPlugin::getPluginBuilder() const { return QString("CORVANE"); }

bool NerioOpmPlugin::bkgRun(QWidget*) { return true; }

bool NerioOpmPlugin::start(QWidget* parent)
{
    // The window and the page are built once and kept; the host may have destroyed them since,
    // and then they are built again.
    if (!m_pUtilWnd)
        m_pUtilWnd = new CUtilWindow(parent);
    if (!m_pOpticalPowerMeter) {
        m_pOpticalPowerMeter = new COpmMainPage(m_pUtilWnd);
        m_pUtilWnd->setCentralWidget(m_pOpticalPowerMeter);
    }
    bIsStarted = true;
    if (m_pOpticalPowerMeter)
        m_pOpticalPowerMeter->enterInit();
    m_pUtilWnd->show();
    m_pUtilWnd->raise();
    m_pUtilWnd->updateWindow(true);
    return true;
}

bool NerioOpmPlugin::stop()
{
    if (!bIsStarted)
        return false;
    if (m_pUtilWnd)
        m_pUtilWnd->hide();
    if (m_pOpticalPowerMeter)
        m_pOpticalPowerMeter->exitClean();
    return true;
}

void NerioOpmPlugin::terminate()
{
    if (m_pUtilWnd)
        m_pUtilWnd->closeWindow();
    bIsStarted = false;
}

void NerioOpmPlugin::show()
{
    if (m_pUtilWnd) {
        m_pUtilWnd->show();
        m_pUtilWnd->updateWindow(true);
    }
}

void NerioOpmPlugin::hide()
{
    if (m_pUtilWnd)
        m_pUtilWnd->hide();
}

void NerioOpmPlugin::update()
{
    if (m_pUtilWnd)
        m_pUtilWnd->updateWindow(true);
}

QObject* NerioOpmPlugin::getObject() { return m_pUtilWnd; }

void NerioOpmPlugin::setCallerID(int callerId) { m_callerId = callerId; }

// The shell's loader checks this text, both through the function and in the library's own
// section, before it lets the plug-in in.
#define OPM_PLUGIN_VERIFICATION_DATA                                                               \
    "pattern=QT_PLUGIN_VERIFICATION_DATA\n"                                                        \
    "version=4.8.4\n"                                                                              \
    "debug=true\n"                                                                                 \
    "buildkey=i386 linux g++-4 full-config"

extern "C" Q_DECL_EXPORT __attribute__((section(".qtplugin"), used))
const char qt_pluginVerificationData[] = OPM_PLUGIN_VERIFICATION_DATA;

extern "C" Q_DECL_EXPORT const char* qt_plugin_query_verification_data()
{
    return qt_pluginVerificationData;
}

extern "C" Q_DECL_EXPORT QObject* qt_plugin_instance()
{
    static QPointer<QObject> instance;
    if (!instance)
        instance = new NerioOpmPlugin;
    return instance;
}
