#ifndef FUZZSUPPORT_H
#define FUZZSUPPORT_H

// What the harnesses share: the entry points that libFuzzer and the replay driver call, and the
// process they run in.

#include <cstddef>
#include <cstdint>

class NerioOpm;
class QWidget;
class TestDeviceRoot;

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace FuzzSupport {

// Once per process: a headless application, a device root of the run's own (also the working
// directory, so the record is the run's own) and a closer for any modal box, so that no input
// can leave the run waiting for a click.
void start();
const TestDeviceRoot& root();

// Paints a widget off screen, as a visible page would.
void paint(QWidget* widget);

// Ends the run when a text field of the page lost its end (a fault even where no sanitizer sees
// it: inside the page object), or when the page's reading label holds anything but a reading of
// a known form, a state text or nothing.
void requireSanePage(NerioOpm* page);

// The input's bytes from offset on, exactly size bytes: zeros where the input is shorter.
void take(const uint8_t* data, size_t dataSize, size_t offset, void* out, size_t size);

} // namespace FuzzSupport

#endif // FUZZSUPPORT_H
