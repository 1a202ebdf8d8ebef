#ifndef QTCOMPAT_H
#define QTCOMPAT_H

// What the suites need that Qt 4.8 and Qt 5.15 spell differently, or that only one of them has.
// The suites build against both toolkits and use these instead.

#include <QDir>
#include <QMap>
#include <QMetaType>
#include <QVector>
#include <QFileInfo>
#include <QPixmap>
#include <QString>
#include <QTest>
#include <QWidget>

#include <QRegExp>

#include <QProcess>

#include <cstdarg>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <utility>

#if QT_VERSION >= 0x050000
#include <QScreen>
#include <QTemporaryDir>
#endif

namespace TestCompat {

// QString::split's "skip empty parts", which moved from QString to Qt in Qt 5.14.
#if QT_VERSION >= 0x050e00
const Qt::SplitBehavior SkipEmptyParts = Qt::SkipEmptyParts;
#else
const QString::SplitBehavior SkipEmptyParts = QString::SkipEmptyParts;
#endif

// The widget as it paints itself, children included.
inline QPixmap grab(QWidget* widget)
{
#if QT_VERSION >= 0x050000
    return widget->grab();
#else
    return QPixmap::grabWidget(widget);
#endif
}

// What the window system shows of the widget's window, as a screen grab sees it.
inline QPixmap grabWindow(QWidget* widget)
{
#if QT_VERSION >= 0x050000
    return widget->screen()->grabWindow(widget->winId());
#else
    return QPixmap::grabWindow(widget->winId());
#endif
}

// True when the pattern matches part of text. QRegExp, which both toolkits have, keeps the
// last match in the object: each call searches with a copy of its own.
inline bool containsMatch(const QRegExp& pattern, const QString& text)
{
    QRegExp search(pattern);
    return search.indexIn(text) >= 0;
}

// The text of capture group n of the first match in text, or a null string.
inline QString captured(const QRegExp& pattern, const QString& text, int n)
{
    QRegExp search(pattern);
    return search.indexIn(text) >= 0 ? search.cap(n) : QString();
}

// QTest::addRow, which Qt 4 lacks: a data row named by a printf format.
inline QTestData& addRow(const char* format, ...) __attribute__((format(printf, 1, 2)));
inline QTestData& addRow(const char* format, ...)
{
    char name[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(name, sizeof name, format, arguments);
    va_end(arguments);
    return QTest::newRow(name);
}

// QTest::qWaitFor, which Qt 4 lacks: events are processed until the condition holds or
// timeoutMs have passed. True when it held.
inline bool waitFor(const std::function<bool()>& condition, int timeoutMs)
{
    for (int waited = 0; !condition(); waited += 10) {
        if (waited >= timeoutMs)
            return false;
        QTest::qWait(10);
    }
    return true;
}

// The process id of a started process; QProcess::pid() is deprecated in Qt 5.
inline qint64 processId(const QProcess& process)
{
#if QT_VERSION >= 0x050300
    return process.processId();
#else
    return qint64(process.pid());
#endif
}

// Waits until the window system has shown the widget's window.
inline bool waitForShown(QWidget* widget)
{
#if QT_VERSION >= 0x050000
    return QTest::qWaitForWindowExposed(widget);
#else
    QTest::qWaitForWindowShown(widget);
    return widget->isVisible();
#endif
}

// Removes a folder and everything below it; true when there is no folder (a file stays), as
// QDir::removeRecursively.
inline bool removeRecursively(const QString& path)
{
#if QT_VERSION >= 0x050000
    return QDir(path).removeRecursively();
#else
    if (!QFileInfo(path).isDir())
        return true;
    const QFileInfoList entries = QDir(path).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (int i = 0; i < entries.size(); ++i) {
        const QFileInfo& entry = entries.at(i);
        const bool removed = entry.isDir() && !entry.isSymLink()
            ? removeRecursively(entry.absoluteFilePath())
            : QFile::remove(entry.absoluteFilePath());
        if (!removed)
            return false;
    }
    return QDir().rmdir(path);
#endif
}

// A fresh temporary folder, removed with everything in it when the object goes.
class TempDir
{
public:
    TempDir();
    ~TempDir();
    bool isValid() const { return !m_path.isEmpty(); }
    QString path() const { return m_path; }
    QString filePath(const QString& name) const { return m_path + QLatin1Char('/') + name; }

private:
    TempDir(const TempDir&);
    TempDir& operator=(const TempDir&);
#if QT_VERSION >= 0x050000
    QTemporaryDir m_dir;
#endif
    QString m_path;
};

// QMap with a brace list of pairs, which Qt 4's QMap lacks.
template <typename Key, typename Value>
class Map : public QMap<Key, Value>
{
public:
    Map() { }
    Map(const QMap<Key, Value>& other) : QMap<Key, Value>(other) { }
    using QMap<Key, Value>::insert;
    // Every pair of other, over those of the same key.
    void insert(const QMap<Key, Value>& other)
    {
        for (typename QMap<Key, Value>::const_iterator it = other.constBegin();
             it != other.constEnd(); ++it)
            this->insert(it.key(), it.value());
    }
    Map(std::initializer_list<std::pair<Key, Value>> pairs)
    {
        for (const std::pair<Key, Value>& pair : pairs)
            this->insert(pair.first, pair.second);
    }
};

typedef Map<QString, QString> StringMap;

} // namespace TestCompat

Q_DECLARE_METATYPE(TestCompat::StringMap)

// Types of test data columns that only Qt 5 knows by itself.
#if QT_VERSION < 0x050000
Q_DECLARE_METATYPE(QVector<double>)
Q_DECLARE_METATYPE(QList<QByteArray>)
#endif

// QTRY_VERIFY_WITH_TIMEOUT and QTRY_COMPARE_WITH_TIMEOUT, which Qt 4 lacks: the condition is
// checked again while events are processed, until it holds or timeoutMs have passed.
#define OPM_TRY_VERIFY(expr, timeoutMs)                                                            \
    do {                                                                                           \
        for (int opmWaited_ = 0; !(expr) && opmWaited_ < (timeoutMs); opmWaited_ += 10)            \
            QTest::qWait(10);                                                                      \
        QVERIFY(expr);                                                                             \
    } while (0)

#define OPM_TRY_VERIFY2(expr, message, timeoutMs)                                                  \
    do {                                                                                           \
        for (int opmWaited_ = 0; !(expr) && opmWaited_ < (timeoutMs); opmWaited_ += 10)            \
            QTest::qWait(10);                                                                      \
        QVERIFY2(expr, message);                                                                   \
    } while (0)

#define OPM_TRY_COMPARE(expr, expected, timeoutMs)                                                 \
    do {                                                                                           \
        for (int opmWaited_ = 0; (expr) != (expected) && opmWaited_ < (timeoutMs);                 \
             opmWaited_ += 10)                                                                     \
            QTest::qWait(10);                                                                      \
        QCOMPARE(expr, expected);                                                                  \
    } while (0)

// QSKIP, which takes a second argument in Qt 4.
#if QT_VERSION >= 0x050000
#define OPM_SKIP(message) QSKIP(message)
#else
#define OPM_SKIP(message) QSKIP(message, SkipAll)
#endif

// QTEST_GUILESS_MAIN, which Qt 4 lacks: a QCoreApplication and the suite.
#if QT_VERSION >= 0x050000
#define OPM_TEST_GUILESS_MAIN(TestObject) QTEST_GUILESS_MAIN(TestObject)
#else
#define OPM_TEST_GUILESS_MAIN(TestObject)                                                          \
    int main(int argc, char* argv[])                                                               \
    {                                                                                              \
        QCoreApplication app(argc, argv);                                                          \
        TestObject tc;                                                                             \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }
#endif

#endif // QTCOMPAT_H
