// opmfloor [--widgets N]: the floor page on its own, polling the shared record of the current
// folder once a second (see floorPage.h).
#include "floorPage.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    int widgets = CFloorPage::kDefaultWidgetCount;
    const QStringList arguments = QCoreApplication::arguments();
    const int at = arguments.indexOf(QString::fromLatin1("--widgets"));
    if (at > 0)
        widgets = arguments.value(at + 1).toInt();
    CFloorPage page(widgets);
    page.setGeometry(141, 61, 658, 398);
    page.show();
    return app.exec();
}
