#ifndef UTILINTERFACE_H
#define UTILINTERFACE_H

#include <QString>
#include <QtPlugin>

class QObject;
class QWidget;

// What the shell asks of every application plug-in. The shell calls through the table of
// virtual functions, so the order of the operations is part of the contract.
class UtilInterface
{
public:
    virtual ~UtilInterface() { }

    virtual QString getPluginID() const = 0;
    virtual QString getPluginName() const = 0;
    virtual QString getPluginVersion() const = 0;
    virtual QString getPluginBuilder() const = 0;
    virtual bool bkgRun(QWidget* parent) = 0;
    virtual bool start(QWidget* parent) = 0;
    virtual bool stop() = 0;
    virtual void terminate() = 0;
    virtual void show() = 0;
    virtual void hide() = 0;
    virtual void update() = 0;
    virtual QObject* getObject() = 0;
    virtual void setCallerID(int callerId) = 0;

    bool bIsStarted;
    int m_callerId;
};

#define UtilInterface_iid "com.corvaneinc.CommonUtil.UtilInterface/1.0"
Q_DECLARE_INTERFACE(UtilInterface, UtilInterface_iid)

#endif // UTILINTERFACE_H
