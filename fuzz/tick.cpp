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
#include "fixedText.h"
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
void putInto(NerioOpm* page, const PageState& s)
{
    using P = OpmPageProbe;
    static const P::Button units[] = { P::DBm, P::MW, P::UW, P::DBm };
    P::choose(page, P::Mode, int(s.loss));
    P::click(page, units[s.unit]);
    P::choose(page, P::LossUnit, s.lossUnit == 3 ? 0 : s.lossUnit);
    P::type(page, P::Min, number(s.min));
    P::type(page, P::Max, number(s.max));
    if (g_limits->isChecked())
        P::click(page, P::Limits);
    P::click(page, P::Limits);
    if (!s.limits)
        P::click(page, P::Limits);
    const bool lengthFits = s.length > 0.0f && s.length <= 99999.0f;
    P::enter(page, P::Length, lengthFits ? number(s.length) : QString::fromLatin1("1"));
    if (s.hold)
        P::click(page, P::Hold);
    P::tick(page);
    if (s.hold)
        P::click(page, P::Hold);
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
    putInto(g_page, state);
    FuzzSupport::requireSanePage(g_page);
    FuzzSupport::paint(g_bar);
    return 0;
}
