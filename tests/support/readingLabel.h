#ifndef READINGLABEL_H
#define READINGLABEL_H

// Header only: the bundle's host links no test support, only the toolkit.

#include <QLabel>
#include <QTabWidget>

// The visible label of the Setup tab that shows text, if any: how a host sees a reading.
inline QLabel* readingLabel(QWidget* window, const QString& text)
{
    QTabWidget* tabs = window->findChild<QTabWidget*>();
    if (!tabs || tabs->tabText(tabs->currentIndex()) != QLatin1String("Setup"))
        return 0;
    foreach (QLabel* label, tabs->currentWidget()->findChildren<QLabel*>())
        if (label->text() == text && label->isVisible())
            return label;
    return 0;
}

#endif // READINGLABEL_H
