#include "pluginLoader.h"

#include "elfSection.h"
#include "utilinterface.h"
#include "verificationText.h"

#include <QFile>
#include <QObject>
#include <QPluginLoader>

#include <cstring>
#include <string>
#include <vector>

namespace {

using QueryVerificationData = const char* (*)();
using PluginInstance = QObject* (*)();

const char kSectionName[] = ".qtplugin";

} // namespace

PluginLoader::PluginLoader(const QString& path) : m_library(path) { }

bool PluginLoader::load()
{
    QByteArray sectionText;
    // The file is read before it is loaded: a plug-in that fails never runs any of its code.
    return checkSection(&sectionText) && checkFunction(sectionText) && resolveInterface();
}

UtilInterface* PluginLoader::utilInterface() const { return qobject_cast<UtilInterface*>(m_root); }

bool PluginLoader::checkSection(QByteArray* text)
{
    std::vector<char> bytes;
    std::string reason;
    if (!PluginVerify::readElfSection(
            std::string(QFile::encodeName(m_library.fileName()).constData()), kSectionName, &bytes,
            &reason))
        return fail(QString::fromLatin1("cannot read the verification section: %1")
                        .arg(QString::fromStdString(reason)));
    const std::string found = PluginVerify::sectionText(bytes.data(), bytes.size());
    if (!PluginVerify::checkVerificationText(found, &reason))
        return fail(QString::fromLatin1("verification section refused: %1")
                        .arg(QString::fromStdString(reason)));
    *text = QByteArray(found.data(), int(found.size()));
    return true;
}

bool PluginLoader::checkFunction(const QByteArray& sectionText)
{
    if (!m_library.load())
        return fail(
            QString::fromLatin1("cannot load the library: %1").arg(m_library.errorString()));
    auto query = reinterpret_cast<QueryVerificationData>(
        m_library.resolve("qt_plugin_query_verification_data"));
    if (!query)
        return fail(QString::fromLatin1("no qt_plugin_query_verification_data export"));
    const char* data = query();
    if (!data)
        return fail(QString::fromLatin1("qt_plugin_query_verification_data returned nothing"));
    const std::string text(data, strnlen(data, PluginVerify::kMaxSectionSize));
    std::string reason;
    if (!PluginVerify::checkVerificationText(text, &reason))
        return fail(QString::fromLatin1("verification data refused: %1")
                        .arg(QString::fromStdString(reason)));
    if (QByteArray(text.data(), int(text.size())) != sectionText)
        return fail(QString::fromLatin1("the verification data and the .qtplugin section differ"));
    return true;
}

bool PluginLoader::resolveInterface()
{
#if QT_VERSION >= 0x050000
    // Qt 5's own loader cannot take a Qt 4-style plug-in: the root object is asked for here.
    auto instance = reinterpret_cast<PluginInstance>(m_library.resolve("qt_plugin_instance"));
    if (!instance)
        return fail(QString::fromLatin1("no qt_plugin_instance export"));
    m_root = instance();
#else
    // The set's own way in, with Qt 4's checks of version, build key and instance.
    QPluginLoader pluginLoader(m_library.fileName());
    m_root = pluginLoader.instance();
    if (!m_root)
        return fail(QString::fromLatin1("QPluginLoader: %1").arg(pluginLoader.errorString()));
#endif
    if (!m_root)
        return fail(QString::fromLatin1("qt_plugin_instance returned no object"));
    if (!utilInterface())
        return fail(QString::fromLatin1("root object %1 does not implement %2")
                        .arg(QString::fromLatin1(m_root->metaObject()->className()),
                             QString::fromLatin1(UtilInterface_iid)));
    return true;
}

bool PluginLoader::fail(const QString& reason)
{
    m_error = reason;
    return false;
}
