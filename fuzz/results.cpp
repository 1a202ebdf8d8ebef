// Saved readings with any bytes in their text fields through the Result tab's lines and the
// HTML report's tables.
//
// Input: saved readings one after the other (the last padded with zeros), at most 13, one more
// than the store keeps. Each is the nine 16-byte text fields of Result in their order (test
// mode, wavelength, minimum, maximum, value, reference, pass, limits unit, fibre length), none
// of them necessarily ended, then one byte whose bit 0 is the limits flag. The store stamps the
// time itself.
#include "fuzzSupport.h"
#include "opmPageProbe.h"

namespace {

const size_t kTextFields = 9;
const size_t kFieldSize = 16;
const size_t kSavedSize = kTextFields * kFieldSize + 1;
const size_t kMaxSaved = CBrovaOpmDataEngine::kMaxResults + 1;

COpmMainPage* g_mainPage = nullptr;
COpmShowResultPage* g_resultPage = nullptr;
FILE* g_report = nullptr;

Result savedAt(const uint8_t* data, size_t size, size_t offset)
{
    Result r {};
    char* const fields[kTextFields] = { r.testMode, r.waveLenth,  r.minimum,
                                        r.maximum,  r.value,      r.ref,
                                        r.pass,     r.limitsUnit, r.fiberLength };
    for (size_t i = 0; i < kTextFields; ++i)
        FuzzSupport::take(data, size, offset + i * kFieldSize, fields[i], kFieldSize);
    uint8_t flags = 0;
    FuzzSupport::take(data, size, offset + kTextFields * kFieldSize, &flags, 1);
    r.isLimit = flags & 1;
    return r;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzSupport::start();
    g_mainPage = new COpmMainPage;
    g_resultPage = new COpmShowResultPage;
    g_report = std::fopen("/dev/null", "w");
    if (!g_report)
        qFatal("the results harness cannot open /dev/null");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    const size_t count = std::min(kMaxSaved, (size + kSavedSize - 1) / kSavedSize);
    for (size_t i = 0; i < count; ++i) {
        Result saved = savedAt(data, size, i * kSavedSize);
        store->addResultItem(saved);
    }
    // Every field the store hands out ends inside its width, whatever the saved reading held.
    std::list<Result> stored;
    store->getAllResultItem(stored);
    for (std::list<Result>::const_iterator it = stored.begin(); it != stored.end(); ++it) {
        if (!OpmPageProbe::fieldsEnded(*it))
            qFatal("a text field of a stored reading runs past its width");
    }
    // Opening the tab fills its lines, leaving it blanks them.
    QShowEvent shown;
    QCoreApplication::sendEvent(g_resultPage, &shown);
    QHideEvent hidden;
    QCoreApplication::sendEvent(g_resultPage, &hidden);
    g_mainPage->writeOpmHtmlData(g_report);
    std::fflush(g_report);
    return 0;
}
