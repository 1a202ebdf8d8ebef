#ifndef READINGLABEL_H
#define READINGLABEL_H

// Header only: the bundle's host links no test support, only the toolkit.

#include <QLabel>

// The visible label that shows text, if any: how a host sees a reading (only the current tab's
// labels are visible, and of the Result tab's none shows a reading alone).
inline QLabel* readingLabel(QWidget* window, const QString& text)
{
    foreach (QLabel* label, window->findChildren<QLabel*>())
        if (label->text() == text && label->isVisible())
            return label;
    return 0;
}

#endif // READINGLABEL_H
