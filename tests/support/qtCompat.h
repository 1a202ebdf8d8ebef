#ifndef QTCOMPAT_H
#define QTCOMPAT_H

// What the suites need that Qt 4.8 and Qt 5.15 spell differently, or that only one of them has.
// The suites build against both toolkits and use these instead.

#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QString>
#include <QTest>
#include <QWidget>

#if QT_VERSION >= 0x050000
#include <QTemporaryDir>
#endif

namespace TestCompat {

// The widget as it paints itself, children included.
inline QPixmap grab(QWidget* widget)
{
#if QT_VERSION >= 0x050000
    return widget->grab();
#else
    return QPixmap::grabWidget(widget);
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
    const QFileInfoList entries = QDir(path).entryInfoList(QDir::AllEntries | QDir::Hidden
                                                           | QDir::System | QDir::NoDotAndDotDot);
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

private:
    TempDir(const TempDir&);
    TempDir& operator=(const TempDir&);
#if QT_VERSION >= 0x050000
    QTemporaryDir m_dir;
#endif
    QString m_path;
};

} // namespace TestCompat

// QTRY_VERIFY_WITH_TIMEOUT and QTRY_COMPARE_WITH_TIMEOUT, which Qt 4 lacks: the condition is
// checked again while events are processed, until it holds or timeoutMs have passed.
#define OPM_TRY_VERIFY(expr, timeoutMs)                                                            \
    do {                                                                                           \
        for (int opmWaited_ = 0; !(expr) && opmWaited_ < (timeoutMs); opmWaited_ += 10)            \
            QTest::qWait(10);                                                                      \
        QVERIFY(expr);                                                                             \
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

#endif // QTCOMPAT_H
