#include "opmMain.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    COpmMainPage page(0);
    page.setGeometry(141, 61, 658, 398);
    page.show();
    return app.exec();
}
