#ifndef QTCOMPAT_H
#define QTCOMPAT_H

// What the suites need that Qt 4.8 and Qt 5.15 spell differently, or that only one of them has.
// The suites build against both toolkits and use these instead.

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QWidget>

namespace TestCompat {

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

// Removes a file, or a folder with everything below it.
inline bool removeRecursively(const QString& path)
{
    return QProcess::execute("rm",
                             QStringList() << "-rf"
                                           << "--" << path)
        == 0;
}

// A fresh temporary folder named after the application (as Qt 5's QTemporaryDir names them),
// removed with everything in it when the object goes.
class TempDir
{
public:
    TempDir();
    ~TempDir()
    {
        if (isValid())
            removeRecursively(m_path);
    }
    bool isValid() const { return !m_path.isEmpty(); }
    QString path() const { return m_path; }

private:
    TempDir(const TempDir&);
    TempDir& operator=(const TempDir&);
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
