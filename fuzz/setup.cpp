// Any settings file through the measurement page's start: the stored setup is read, applied to
// a new page, and a reading is shown through it (limits, loss unit and length, references).
//
// Input: the file's whole content.
#include "devicePaths.h"
#include "fuzzSupport.h"
#include "opmPageProbe.h"

#include <sys/shm.h>
#include <utime.h>

namespace {

RecordWriter* g_reader = nullptr;

// QSettings keeps a parsed file per process and reads it again only when its size or time
// changed: give every input a time of its own, so that none is served another's file.
void writeSettingFile(const uint8_t* data, size_t size)
{
    static time_t s_stamp = 1000000000;
    const QByteArray content(reinterpret_cast<const char*>(data), int(size));
    if (!FuzzSupport::root().writeFile(QString::fromLatin1("/home/Setting/opmSetup.conf"), content))
        qFatal("cannot write the settings file");
    ++s_stamp;
    const struct utimbuf times = { s_stamp, s_stamp };
    if (utime(QFile::encodeName(DevicePaths::settingFile()).constData(), &times) != 0)
        qFatal("cannot date the settings file");
}

// The reader as it behaves: it reports the wavelength the page asked for.
void readAtTarget(NerioOpm* page)
{
    static const char* const waves[] = { "850", "1310", "1490", "1550", "1625" };
    const int target = g_reader->record()->wavelenthTarget;
    g_reader->setReading(target >= 0 && target < 5 ? waves[target] : "850", "dBm", "-4.52");
    g_reader->record()->needSave = 0;
    // The first tick follows the wavelength, the second measures against its reference.
    OpmPageProbe::tick(page);
    OpmPageProbe::tick(page);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzSupport::start();
    g_reader = new RecordWriter;
    if (!g_reader->isAttached())
        qFatal("the setup harness found no record");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
    g_reader->record()->wavelenthTarget = 0;
    writeSettingFile(data, size);
    auto* page = new NerioOpm;
    readAtTarget(page);
    FuzzSupport::requireSanePage(page);
    if (auto* bar = page->findChild<OffsetBar*>())
        FuzzSupport::paint(bar);
    // The page keeps its record attached for the process's life; a page per input must not.
    OpmShareRecord* attached = OpmPageProbe::record(page);
    delete page;
    if (isShareMemAttached(attached))
        shmdt(attached);
    return 0;
}
