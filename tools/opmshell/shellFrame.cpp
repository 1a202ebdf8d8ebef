#include "shellFrame.h"

#include "cpushbutton.h"
#include "cwidgetstyle.h"
#include "utilinterface.h"

#include <QApplication>
#include <QDateTime>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>

namespace {

void setBackground(QWidget* widget, const QColor& color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, color);
    palette.setColor(QPalette::WindowText, CWidgetStyle::getColor(CWidgetStyle::TextOnPage));
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
}

QLabel* titleLabel(const QString& text, int pointSize, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setPointSize(pointSize);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QString boolText(bool value)
{
    return value ? QString::fromLatin1("true") : QString::fromLatin1("false");
}

// What a keyboard would type with that key: printable ASCII, letters small without Shift.
QString keyText(int key, Qt::KeyboardModifiers modifiers)
{
    if (key < Qt::Key_Space || key > Qt::Key_AsciiTilde
        || (modifiers & ~(Qt::ShiftModifier | Qt::KeypadModifier)))
        return QString();
    const QChar typed(key);
    return modifiers & Qt::ShiftModifier ? QString(typed) : QString(typed.toLower());
}

QPixmap grabOf(QWidget* widget)
{
#if QT_VERSION >= 0x050000
    return widget->grab();
#else
    return QPixmap::grabWidget(widget);
#endif
}

} // namespace

ShellFrame::ShellFrame(QObject* pluginRoot, UtilInterface* plugin, QWidget* parent)
    : QWidget(parent), m_root(pluginRoot), m_plugin(plugin)
{
    setFixedSize(CWidgetStyle::getScreenRegion(CWidgetStyle::Screen).size());
    // The one-pixel gaps between the regions show this darker shade as dividing lines.
    setBackground(this, CWidgetStyle::getColor(CWidgetStyle::PanelBackground).darker(200));
    setWindowTitle(plugin ? plugin->getPluginName() : QString::fromLatin1("opmshell"));
    buildTitleBar();
    buildSidePanel();
    buildStatusBar();
    buildWorkArea();
    updateClock();
    auto* clockTimer = new QTimer(this);
    connect(clockTimer, SIGNAL(timeout()), this, SLOT(updateClock()));
    clockTimer->start(1000);
}

QWidget* ShellFrame::panel(int region)
{
    auto* widget = new QWidget(this);
    widget->setGeometry(CWidgetStyle::getScreenRegion(region));
    setBackground(widget, CWidgetStyle::getColor(CWidgetStyle::PanelBackground));
    return widget;
}

void ShellFrame::buildTitleBar()
{
    QWidget* bar = panel(CWidgetStyle::TitleBar);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(16, 0, 16, 0);
    const QString name = isAlive()
        ? QString::fromLatin1("%1  %2").arg(m_plugin->getPluginName(), m_plugin->getPluginVersion())
        : QString();
    layout->addWidget(titleLabel(name, 16, bar));
    layout->addStretch();
    m_clock = titleLabel(QString(), 14, bar);
    layout->addWidget(m_clock);
}

void ShellFrame::buildSidePanel()
{
    struct Key
    {
        const char* caption;
        const char* slot;
    };
    static const Key keys[] = {
        { "Start", SLOT(startPlugin()) },   { "Stop", SLOT(stopPlugin()) },
        { "Show", SLOT(showPlugin()) },     { "Hide", SLOT(hidePlugin()) },
        { "Update", SLOT(updatePlugin()) }, { "Terminate", SLOT(terminatePlugin()) },
    };
    QWidget* side = panel(CWidgetStyle::SidePanel);
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(10, 12, 10, 12);
    layout->setSpacing(10);
    for (const Key& key : keys) {
        auto* button = new CPushButton(QString::fromLatin1(key.caption), side);
        button->setObjectName(QString::fromLatin1(key.caption));
        button->setStyle(CPushButton::StyleGreen, false);
        button->setFocusPolicy(Qt::NoFocus);
        button->setMinimumHeight(48);
        connect(button, SIGNAL(clicked()), this, key.slot);
        layout->addWidget(button);
    }
}

// Seen only while no plug-in window covers the work area.
void ShellFrame::buildWorkArea()
{
    auto* hint = new QLabel(tr("Press Start to open the application"), this);
    hint->setGeometry(CWidgetStyle::getScreenRegion(CWidgetStyle::WorkArea));
    hint->setAlignment(Qt::AlignCenter);
    setBackground(hint, CWidgetStyle::getColor(CWidgetStyle::PageBackground));
    hint->lower();
}

void ShellFrame::buildStatusBar()
{
    QWidget* bar = panel(CWidgetStyle::StatusBar);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(8, 0, 8, 0);
    m_status = new QLabel(bar);
    layout->addWidget(m_status);
}

void ShellFrame::updateClock()
{
    m_clock->setText(
        QDateTime::currentDateTime().toString(QString::fromLatin1("yyyy-MM-dd  hh:mm:ss")));
}

bool ShellFrame::isAlive() const { return m_plugin && m_root; }

void ShellFrame::report(const QString& call, const QString& result)
{
    const QString line =
        result.isEmpty() ? call : QString::fromLatin1("%1 -> %2").arg(call, result);
    std::printf("opmshell: %s\n", qPrintable(line));
    std::fflush(stdout);
    m_status->setText(line);
}

void ShellFrame::startPlugin()
{
    if (isAlive())
        report(QString::fromLatin1("start"), boolText(m_plugin->start(this)));
}

void ShellFrame::stopPlugin()
{
    if (isAlive())
        report(QString::fromLatin1("stop"), boolText(m_plugin->stop()));
}

void ShellFrame::showPlugin()
{
    if (!isAlive())
        return;
    m_plugin->show();
    report(QString::fromLatin1("show"));
}

void ShellFrame::hidePlugin()
{
    if (!isAlive())
        return;
    m_plugin->hide();
    report(QString::fromLatin1("hide"));
}

void ShellFrame::updatePlugin()
{
    if (!isAlive())
        return;
    m_plugin->update();
    report(QString::fromLatin1("update"));
}

void ShellFrame::terminatePlugin()
{
    if (!isAlive())
        return;
    m_plugin->terminate();
    report(QString::fromLatin1("terminate"));
}

void ShellFrame::shutdownPlugin()
{
    if (m_shutDown)
        return;
    m_shutDown = true;
    stopPlugin();
    terminatePlugin();
}

bool ShellFrame::saveScreenshot(const QString& file)
{
    // The keypad and message boxes are windows of their own, which grab() leaves out.
    QPixmap screen = grabOf(this);
    QPainter painter(&screen);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window != this && window->isVisible())
            painter.drawPixmap(window->geometry().topLeft() - geometry().topLeft(), grabOf(window));
    }
    painter.end();
    const bool saved = screen.save(file, "PNG");
    if (saved) {
        std::printf("opmshell: screenshot %s\n", qPrintable(file));
        std::fflush(stdout);
    } else {
        std::fprintf(stderr, "opmshell: cannot write the screenshot %s\n", qPrintable(file));
    }
    return saved;
}

void ShellFrame::pressKey(const QKeySequence& key)
{
    QWidget* window = QApplication::activeModalWidget();
    if (!window)
        window = QApplication::activeWindow();
    if (!window)
        window = this;
    // The press may close the window that had the focus; then the release goes nowhere.
    QPointer<QWidget> target = window->focusWidget() ? window->focusWidget() : window;
    const int code = key[0] & ~Qt::KeyboardModifierMask;
    const auto modifiers = Qt::KeyboardModifiers(key[0] & Qt::KeyboardModifierMask);
    const QString text = keyText(code, modifiers);
    report(QString::fromLatin1("key %1").arg(key.toString()),
           QString::fromLatin1(target->metaObject()->className()));
    QKeyEvent press(QEvent::KeyPress, code, modifiers, text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, code, modifiers, text);
    if (target)
        QApplication::sendEvent(target, &release);
}
