#ifndef CUTILWINDOW_H
#define CUTILWINDOW_H

#include "cwidget.h"

#include <QPointer>

// The frame a plug-in gets inside the shell: it fills the work area beside the side panel and
// holds the application's page as its central widget.
class CUtilWindow : public CWidget
{
    Q_OBJECT
public:
    explicit CUtilWindow(QWidget* parent = 0);

    void setCentralWidget(QWidget* widget);
    QWidget* centralWidget() const { return m_central; }

    void updateWindow(bool repaintNow);
    void closeWindow();

private:
    QPointer<QWidget> m_central;
};

#endif // CUTILWINDOW_H
