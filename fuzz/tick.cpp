// One tick of the measurement page over any shared record, in any state of the page: the
// display, the offset bar, the result a save would store, the summary line and the reader's
// save request.
//
// Input: the page's state, then the record (a shorter input is padded with zeros).
//   0       bit 0 Loss Meter; bits 1-2 display unit dBm, mW, uW (3: dBm); bits 3-4 loss unit
//           dB, dB/km, dB/mi (3: dB); bit 5 limits on; bit 6 on hold
//   1       readings already in the store (modulo 12, so a save never meets a full store)
//   2-13    lower limit, upper limit, fibre length: three floats as they lie in memory
//   14-77   the 64-byte shared record
#include "fuzzSupport.h"
#include "opmPageProbe.h"

namespace {

const size_t kStateSize = 14;

NerioOpm* g_page = nullptr;
RecordWriter* g_reader = nullptr;
CCheckBox* g_limits = nullptr;
OffsetBar* g_bar = nullptr;

struct PageState
{
    bool loss;
    int unit;
    int lossUnit;
    bool limits;
    bool hold;
    int stored;
    float min;
    float max;
    float length;
};

PageState stateOf(const uint8_t* data, size_t size)
{
    uint8_t bits = 0;
    uint8_t stored = 0;
    PageState s {};
    FuzzSupport::take(data, size, 0, &bits, 1);
    FuzzSupport::take(data, size, 1, &stored, 1);
    FuzzSupport::take(data, size, 2, &s.min, sizeof s.min);
    FuzzSupport::take(data, size, 6, &s.max, sizeof s.max);
    FuzzSupport::take(data, size, 10, &s.length, sizeof s.length);
    s.loss = bits & 1;
    s.unit = (bits >> 1) & 3;
    s.lossUnit = (bits >> 3) & 3;
    s.limits = bits & 0x20;
    s.hold = bits & 0x40;
    s.stored = stored % CBrovaOpmDataEngine::kMaxResults;
    return s;
}

QString number(float value) { return QString::number(double(value), 'g', 9); }

// The operator's steps that put the page into the state. The limits go in as a restored setup
// puts them (any number), then the check box takes them over; the length goes through its
// field, whose check refuses what the page could never hold (and would open a box).
QString stepsFor(const PageState& s)
{
    static const char* const units[] = { "dBm", "mW", "uW", "dBm" };
    QStringList steps;
    steps << QString::fromLatin1("choose mode %1").arg(int(s.loss))
          << QString::fromLatin1("click %1").arg(units[s.unit])
          << QString::fromLatin1("choose lossUnit %1").arg(s.lossUnit == 3 ? 0 : s.lossUnit)
          << "type min " + number(s.min) << "type max " + number(s.max);
    if (g_limits->isChecked())
        steps << "click limits";
    steps << "click limits";
    if (!s.limits)
        steps << "click limits";
    const bool lengthFits = s.length > 0.0f && s.length <= 99999.0f;
    steps << "enter length " + (lengthFits ? number(s.length) : QString::fromLatin1("1"));
    steps << (s.hold ? "click hold; tick; click hold" : "tick");
    return steps.join(";");
}

void fillStore(int count)
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    Result saved {};
    FixedText::copy(saved.testMode, "Power Meter");
    FixedText::copy(saved.waveLenth, "1310");
    FixedText::copy(saved.value, "-4.930 dBm");
    FixedText::copy(saved.pass, "YES");
    saved.isLimit = true;
    for (int i = 0; i < count; ++i)
        store->addResultItem(saved);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzSupport::start();
    g_reader = new RecordWriter;
    g_page = new NerioOpm;
    g_limits = g_page->findChild<CCheckBox*>();
    g_bar = g_page->findChild<OffsetBar*>();
    if (!g_reader->isAttached() || !g_limits || !g_bar)
        qFatal("the tick harness found no record or no page");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const PageState state = stateOf(data, size);
    fillStore(state.stored);
    OpmShareRecord record;
    FuzzSupport::take(data, size, kStateSize, &record, sizeof record);
    std::memcpy(g_reader->record(), &record, sizeof record);
    OpmPageProbe::act(g_page, *g_reader, stepsFor(state));
    FuzzSupport::requireSanePage(g_page);
    FuzzSupport::paint(g_bar);
    return 0;
}
