#ifndef PLUGINLOADER_H
#define PLUGINLOADER_H

#include <QLibrary>
#include <QPointer>
#include <QString>

class QObject;
class UtilInterface;

// Loads an application plug-in as the set's shell does: the verification text must be in the
// file's .qtplugin section and behind qt_plugin_query_verification_data, the same in both and
// matching the shell's Qt version and build key; only then is the root object asked for, built
// with Qt 4 through QPluginLoader as on the set.
class PluginLoader
{
public:
    explicit PluginLoader(const QString& path);

    // False with a reason in errorString() when the plug-in is refused.
    bool load();
    QString errorString() const { return m_error; }

    QObject* rootObject() const { return m_root; }
    UtilInterface* utilInterface() const;

private:
    bool checkSection(QByteArray* text);
    bool checkFunction(const QByteArray& sectionText);
    bool resolveInterface();
    bool fail(const QString& reason);

    QLibrary m_library;
    QPointer<QObject> m_root;
    QString m_error;
};

#endif // PLUGINLOADER_H
