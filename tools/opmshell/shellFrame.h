#ifndef SHELLFRAME_H
#define SHELLFRAME_H

#include <QPointer>
#include <QWidget>

class QKeySequence;
class QLabel;
class UtilInterface;

// The shell's screen: a title bar with the application's name and a clock, a side panel with
// the keys that drive the plug-in, the work area the plug-in's window places itself in, and a
// status line that tells what the last call returned.
class ShellFrame : public QWidget
{
    Q_OBJECT
public:
    ShellFrame(QObject* pluginRoot, UtilInterface* plugin, QWidget* parent = nullptr);

    // Grabs the whole frame with any dialog open above it; false when the file cannot be
    // written.
    bool saveScreenshot(const QString& file);
    // Presses and releases one key (with its modifiers) where the set's shell forwards its
    // hardware keys: the focus widget of the active modal window, else of the active window.
    void pressKey(const QKeySequence& key);

public slots:
    void startPlugin();
    void stopPlugin();
    void showPlugin();
    void hidePlugin();
    void updatePlugin();
    void terminatePlugin();
    // What the shell does when it leaves: stop, then terminate. Runs once.
    void shutdownPlugin();

private:
    void buildTitleBar();
    void buildSidePanel();
    void buildStatusBar();
    void buildWorkArea();
    QWidget* panel(int region);
    void report(const QString& call, const QString& result = QString());
    bool isAlive() const;

private slots:
    void updateClock();

private:
    QPointer<QObject> m_root;
    UtilInterface* m_plugin;
    QLabel* m_clock = nullptr;
    QLabel* m_status = nullptr;
    bool m_shutDown = false;
};

#endif // SHELLFRAME_H
