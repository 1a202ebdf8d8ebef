#ifndef OPMPLUGIN_H
#define OPMPLUGIN_H

#include "utilinterface.h"

#include <QObject>
#include <QPointer>

class COpmMainPage;
class CUtilWindow;

// The object the shell loads: it opens the optical power meter in a window of the shell's.
class NerioOpmPlugin : public QObject, public UtilInterface
{
    Q_OBJECT
    Q_INTERFACES(UtilInterface)
public:
    NerioOpmPlugin();
    ~NerioOpmPlugin();

    QString getPluginID() const;
    QString getPluginName() const;
    QString getPluginVersion() const;
    QString getPluginBuilder() const;
    bool bkgRun(QWidget* parent);
    bool start(QWidget* parent);
    bool stop();
    void terminate();
    void show();
    void hide();
    void update();
    QObject* getObject();
    void setCallerID(int callerId);

private:
    friend struct OpmPageProbe;

    // Guarded: the host may destroy the window (and the page with it) while the plug-in lives.
    QPointer<COpmMainPage> m_pOpticalPowerMeter;
    QPointer<CUtilWindow> m_pUtilWnd;
};

extern "C" {
Q_DECL_EXPORT QObject* qt_plugin_instance();
Q_DECL_EXPORT const char* qt_plugin_query_verification_data();
}

#endif // OPMPLUGIN_H
