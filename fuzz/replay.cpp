// Replays inputs through a harness without libFuzzer: every file of the folders given (and
// every file given), in name order. A fault in the harness ends the run as it would the fuzzer.
#include "fuzzSupport.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <vector>

extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

// Absolute paths, taken before the harness moves into its device root.
QStringList inputsOf(int argc, char** argv)
{
    QStringList inputs;
    for (int i = 1; i < argc; ++i) {
        const QFileInfo arg(QFile::decodeName(argv[i]));
        if (!arg.isDir()) {
            inputs << arg.absoluteFilePath();
            continue;
        }
        const QDir dir(arg.absoluteFilePath());
        const QStringList files = dir.entryList(QDir::Files | QDir::Hidden, QDir::Name);
        for (int f = 0; f < files.size(); ++f)
            inputs << dir.absoluteFilePath(files.at(f));
    }
    return inputs;
}

QByteArray bytesOf(const QString& file)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "replay: cannot read %s\n", QFile::encodeName(file).constData());
        std::exit(1);
    }
    return in.readAll();
}

} // namespace

int main(int argc, char** argv)
{
    const QStringList inputs = inputsOf(argc, argv);
    if (inputs.empty()) {
        std::fprintf(stderr, "usage: %s <corpus folder or input>...  (no inputs found)\n", argv[0]);
        return 1;
    }
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    for (int i = 0; i < inputs.size(); ++i) {
        const QByteArray bytes = bytesOf(inputs.at(i));
        // A copy of exactly the file's size, so that the sanitizers see a read past its end.
        const std::vector<uint8_t> data(bytes.constData(), bytes.constData() + bytes.size());
        std::printf("replay: %s (%d bytes)\n", QFile::encodeName(inputs.at(i)).constData(),
                    int(data.size()));
        std::fflush(stdout);
        static const uint8_t none = 0;
        LLVMFuzzerTestOneInput(data.empty() ? &none : &data[0], data.size());
    }
    std::printf("replay: %d inputs, no fault\n", int(inputs.size()));
    return 0;
}
