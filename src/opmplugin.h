#ifndef OPMPLUGIN_H
#define OPMPLUGIN_H

#include "utilinterface.h"

#include <QObject>

class COpmMainPage;
class CUtilWindow;

// The object the shell loads: it opens the optical power meter in a window of the shell's.
class NerioOpmPlugin : public QObject, public UtilInterface
{
    Q_OBJECT
    Q_INTERFACES(UtilInterface)
public:
    NerioOpmPlugin();
    ~NerioOpmPlugin() override;

    QString getPluginID() const override;
    QString getPluginName() const override;
    QString getPluginVersion() const override;
    QString getPluginBuilder() const override;
    bool bkgRun(QWidget* parent) override;
    bool start(QWidget* parent) override;
    bool stop() override;
    void terminate() override;
    void show() override;
    void hide() override;
    void update() override;
    QObject* getObject() override;
    void setCallerID(int callerId) override;

private:
    friend struct OpmPageProbe;

    COpmMainPage* m_pOpticalPowerMeter;
    CUtilWindow* m_pUtilWnd;
};

extern "C" {
Q_DECL_EXPORT QObject* qt_plugin_instance();
Q_DECL_EXPORT const char* qt_plugin_query_verification_data();
}

#endif // OPMPLUGIN_H
