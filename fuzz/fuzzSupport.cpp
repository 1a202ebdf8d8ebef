#include "fuzzSupport.h"

#include "opmPageProbe.h"
#include "testSupport.h"

#include <QApplication>
#include <QImage>
#include <QWidget>

#include <algorithm>
#include <cstring>

// fontconfig keeps a cache it never frees; it is no leak of the page's.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace FuzzSupport {

void start()
{
    if (qgetenv("QT_QPA_PLATFORM").isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt keeps argc by reference and may strip options: give it its own, never libFuzzer's.
    static int argc = 1;
    static char name[] = "opmfuzz";
    static char* argv[] = { name, nullptr };
    // Left alive at exit: the harnesses' pages outlive every static.
#ifdef Q_WS_QWS
    new QApplication(argc, argv, QApplication::GuiServer); // its own display server
#else
    new QApplication(argc, argv);
#endif
    root();
    new ModalBoxCloser;
}

const TestDeviceRoot& root()
{
    static TestDeviceRoot deviceRoot;
    return deviceRoot;
}

void paint(QWidget* widget)
{
    QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget->render(&image);
}

void requireSanePage(NerioOpm* page)
{
    if (!OpmPageProbe::fieldsEnded(page))
        qFatal("a text field of the page runs past its width");
    static QRegExp known(
        "-?(nan|inf|\\d+\\.\\d+) (dBm|dB|mW|uW|dB/km|dB/mi)|OPM Not Connected!|---\\.--|");
    const QString label = OpmPageProbe::reading(page);
    if (!known.exactMatch(label))
        qFatal("the reading label shows '%s'", qPrintable(label));
}

void take(const uint8_t* data, size_t dataSize, size_t offset, void* out, size_t size)
{
    std::memset(out, 0, size);
    if (offset < dataSize)
        std::memcpy(out, data + offset, std::min(size, dataSize - offset));
}

} // namespace FuzzSupport
