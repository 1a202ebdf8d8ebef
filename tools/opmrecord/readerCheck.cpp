#include "readerCheck.h"

#include "checkReport.h"
#include "checkedReader.h"
#include "fixedText.h"
#include "opmShareRecord.h"
#include "recordFields.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

const char ReaderCheck::kUsage[] =
    "usage: opmrecord check [--junit FILE] [--retune-ms MS] -- READER [ARG...]\n"
    "  starts READER in a scratch folder of its own, plays the page's side of the shared\n"
    "  record and tells whether the reader keeps the record's contract\n"
    "  --junit FILE      also write the verdicts as JUnit XML\n"
    "  --retune-ms MS    bound for a wavelength change (100..60000, default 2000)\n"
    "  exit status: 0 all checks passed, 1 a check failed, 2 usage or start failed\n";

namespace {

const long kSampleMs = 20;
const long kSegmentLimitMs = 5000;
const long kFirstWriteLimitMs = 5000;
// The page copies the record once a second: each copy must find a reading written since.
const long kReadingPeriodMs = 1000;
const long kObserveMs = 2000;
const int kRateProbes = 3;
const long kSaveWatchMs = 1200;
const long kTermGraceMs = 3000;
const long kDefaultRetuneMs = 2000;
// Put into value by the check, to see the reader write over it.
const char kProbeText[] = "opmcheck";

const char* const kWavelengths[] = { "850", "1310", "1490", "1550", "1625" };
const int kWavelengthCount = int(sizeof kWavelengths / sizeof kWavelengths[0]);

// In the order they are reported.
const char* const kCheckNames[] = { "key",         "segment",      "text-ends",
                                    "wavelength",  "unit",         "value",
                                    "flag",        "reading-rate", "follows-target",
                                    "retune-time", "needSave" };

volatile sig_atomic_t g_interrupted = 0;

void onInterrupt(int) { g_interrupted = 1; }

std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));
std::string format(const char* pattern, ...)
{
    char text[512];
    va_list args;
    va_start(args, pattern);
    std::vsnprintf(text, sizeof text, pattern, args);
    va_end(args);
    return text;
}

template <size_t N>
std::string textOf(const char (&field)[N])
{
    return std::string(field, FixedText::length(field));
}

template <size_t N>
std::string quoted(const char (&field)[N])
{
    return "\"" + RecordFields::escaped(field, FixedText::length(field)) + "\"";
}

// --- what every sample must keep -------------------------------------------------------------

bool endsInside(const OpmShareRecord& r, std::string* seen)
{
    struct Text
    {
        const char* name;
        const char* field;
        size_t size;
    };
    const Text texts[] = { { "wavelenth", r.wavelenth, sizeof r.wavelenth },
                           { "unit", r.unit, sizeof r.unit },
                           { "value", r.value, sizeof r.value },
                           { "deviceType", r.deviceType, sizeof r.deviceType } };
    for (const Text& text : texts) {
        if (!std::memchr(text.field, '\0', text.size)) {
            *seen = format("%s has no NUL in its %zu bytes: \"%s\"", text.name, text.size,
                           RecordFields::escaped(text.field, text.size).c_str());
            return false;
        }
    }
    return true;
}

int wavelengthIndexOf(const std::string& text)
{
    for (int i = 0; i < kWavelengthCount; ++i)
        if (text == kWavelengths[i])
            return i;
    return -1;
}

bool isWavelengthText(const OpmShareRecord& r, std::string* seen)
{
    *seen = "wavelenth " + quoted(r.wavelenth) + " is none of 850, 1310, 1490, 1550, 1625";
    return wavelengthIndexOf(textOf(r.wavelenth)) >= 0;
}

bool isUnitText(const OpmShareRecord& r, std::string* seen)
{
    const std::string unit = textOf(r.unit);
    *seen = "unit " + quoted(r.unit) + " is neither \"dBm\" nor \"dB\"";
    return unit == "dBm" || unit == "dB";
}

// The page removes blanks, then reads the text with atof: all of it must be the number.
bool isReadableNumber(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    if (text.empty())
        return false;
    errno = 0;
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return *end == '\0' && errno == 0 && std::isfinite(number);
}

bool showsAReading(const OpmShareRecord& r)
{
    return r.flag != OpmFlagNoReading && r.flag != OpmFlagNotConnected;
}

bool isValueText(const OpmShareRecord& r, std::string* seen)
{
    const std::string value = textOf(r.value);
    if (!showsAReading(r) || value == kProbeText || value == "---.--")
        return true;
    *seen = format("value %s with flag %d is no number that atof reads whole, nor \"---.--\"",
                   quoted(r.value).c_str(), int(r.flag));
    return isReadableNumber(value);
}

bool isFlagValue(const OpmShareRecord& r, std::string* seen)
{
    *seen =
        format("flag %d is none of 0 (no reading), 1 (reading), 2 (not connected)", int(r.flag));
    return r.flag == OpmFlagNoReading || r.flag == OpmFlagReading || r.flag == OpmFlagNotConnected;
}

// A rule every sample must keep; the first sample that breaks it is what the report shows.
struct SampleRule
{
    const char* name;
    bool (*kept)(const OpmShareRecord&, std::string*);
    int samples;
    std::string firstBreak;
    long breakAtMs;
    int breaksInARow;
};

// --- the page's side --------------------------------------------------------------------------

// Whether the reader has written anything into the record it made.
bool isWritten(const OpmShareRecord& r)
{
    return r.flag != 0 || r.wavelenth[0] || r.unit[0] || r.value[0];
}

class ContractCheck
{
public:
    ContractCheck(CheckedReader& reader, long retuneMs) : m_reader(reader), m_retuneMs(retuneMs)
    {
        SampleRule rules[] = { { "text-ends", endsInside, 0, "", -1, 0 },
                               { "wavelength", isWavelengthText, 0, "", -1, 0 },
                               { "unit", isUnitText, 0, "", -1, 0 },
                               { "value", isValueText, 0, "", -1, 0 },
                               { "flag", isFlagValue, 0, "", -1, 0 } };
        m_rules.assign(rules, rules + sizeof rules / sizeof rules[0]);
    }
    ~ContractCheck()
    {
        if (m_record)
            shmdt(const_cast<OpmShareRecord*>(m_record));
    }

    void run(CheckReport* report);

private:
    bool findSegment();
    bool awaitFirstWrite();
    bool checkReadingRate();
    bool checkWavelengths();
    bool checkNeedSave();
    void judgeSamples();
    void endReader(CheckReport* report);

    // Samples the record every kSampleMs until done() holds (the milliseconds that took) or
    // limitMs have passed (-1). -2 when the reader ended or the check was interrupted.
    template <typename Done>
    long watch(long limitMs, Done done);
    OpmShareRecord take();
    bool lost(const char* check);
    long sinceStart() const { return long(nowMs() - m_startMs); }

    void pass(const char* name, const std::string& detail)
    {
        m_results[name] = { name, CheckReport::Passed, detail };
    }
    void fail(const char* name, const std::string& detail)
    {
        m_results[name] = { name, CheckReport::Failed, detail };
    }

    CheckedReader& m_reader;
    const long m_retuneMs;
    volatile OpmShareRecord* m_record = nullptr;
    long long m_startMs = nowMs();
    bool m_written = false;
    std::vector<SampleRule> m_rules;
    std::map<std::string, CheckReport::Verdict> m_results;
    std::string m_whyNotRun = "needs the reader's segment";
};

OpmShareRecord ContractCheck::take()
{
    const OpmShareRecord copy = RecordFields::snapshot(m_record);
    // Until its first write the record is the empty one the reader made: nothing to judge yet,
    // however long a loaded machine keeps the reader from writing.
    m_written = m_written || isWritten(copy);
    if (!m_written)
        return copy;
    for (SampleRule& rule : m_rules) {
        std::string seen;
        ++rule.samples;
        if (rule.breakAtMs >= 0)
            continue;
        // A copy taken while the reader writes can catch a text half-written; only a break
        // that is still there at the next sample is the reader's.
        if (rule.kept(copy, &seen)) {
            rule.breaksInARow = 0;
        } else if (++rule.breaksInARow == 2) {
            rule.firstBreak = seen;
            rule.breakAtMs = sinceStart();
        }
    }
    return copy;
}

template <typename Done>
long ContractCheck::watch(long limitMs, Done done)
{
    const long long start = nowMs();
    for (;;) {
        const OpmShareRecord copy = take();
        const long elapsed = long(nowMs() - start);
        if (done(copy))
            return elapsed;
        if (g_interrupted || !m_reader.running())
            return -2;
        if (elapsed >= limitMs)
            return -1;
        sleepMs(kSampleMs);
    }
}

// After the reader ended: the check under way fails with how, the rest are not run.
bool ContractCheck::lost(const char* check)
{
    m_whyNotRun = g_interrupted ? std::string("the check was interrupted")
                                : "the reader ended (" + m_reader.howItEnded() + ") before it";
    fail(check,
         g_interrupted ? "interrupted"
                       : "the reader ended (" + m_reader.howItEnded() + ") during it");
    return false;
}

bool ContractCheck::findSegment()
{
    const long long start = nowMs();
    int id = -1;
    while ((id = shmget(m_reader.key(), 0, 0)) == -1) {
        if (!m_reader.running()) {
            std::string tail = m_reader.outputTail();
            std::replace(tail.begin(), tail.end(), '\n', ' ');
            const std::string printed = tail.empty()
                ? std::string("nothing")
                : RecordFields::escaped(tail.data(), tail.size());
            fail("key",
                 "the reader ended (" + m_reader.howItEnded()
                     + ") before it made the segment of its folder's key; it printed: " + printed);
            m_whyNotRun = "the reader ended before it made a segment";
            return false;
        }
        if (g_interrupted)
            return lost("key");
        if (nowMs() - start > kSegmentLimitMs) {
            fail("key",
                 format("no segment of key 0x%08x (ftok of the reader's working folder, "
                        "project 1) within %ld ms",
                        unsigned(m_reader.key()), kSegmentLimitMs));
            return false;
        }
        sleepMs(kSampleMs);
    }
    pass("key",
         format("the segment of key 0x%08x appeared %lld ms after the start",
                unsigned(m_reader.key()), nowMs() - start));

    struct shmid_ds info;
    if (shmctl(id, IPC_STAT, &info) != 0) {
        fail("segment", std::string("cannot look at it: ") + std::strerror(errno));
        return false;
    }
    const size_t size = info.shm_segsz;
    if (size == kOpmShareSegmentSize)
        pass("segment", format("%zu bytes", size));
    else
        fail("segment",
             format("%zu bytes; the page asks for %zu and cannot open a smaller one", size,
                    kOpmShareSegmentSize));
    if (size < sizeof(OpmShareRecord)) {
        m_whyNotRun = "the segment cannot hold the record";
        return false;
    }
    void* address = shmat(id, nullptr, 0);
    if (!isShareMemAttached(address)) {
        m_whyNotRun = std::string("cannot attach the segment: ") + std::strerror(errno);
        return false;
    }
    m_record = static_cast<OpmShareRecord*>(address);
    return true;
}

bool ContractCheck::awaitFirstWrite()
{
    const long took = watch(kFirstWriteLimitMs, isWritten);
    if (took == -2)
        return lost("reading-rate");
    if (took < 0) {
        fail("reading-rate",
             format("nothing written into the record within %ld ms", kFirstWriteLimitMs));
        m_whyNotRun = "needs a record that the reader writes";
        return false;
    }
    return watch(kObserveMs, [](const OpmShareRecord&) { return false; }) != -2
        || lost("reading-rate");
}

// A text put into value must be written over within the page's period, however steady the
// reading: a reader that writes only when the reading changes looks frozen to the page.
bool ContractCheck::checkReadingRate()
{
    const long limit = kReadingPeriodMs + 2 * kSampleMs;
    long slowest = 0;
    for (int i = 0; i < kRateProbes; ++i) {
        FixedText::copy(const_cast<OpmShareRecord*>(m_record)->value, kProbeText);
        const long took =
            watch(limit, [](const OpmShareRecord& r) { return textOf(r.value) != kProbeText; });
        if (took == -2)
            return lost("reading-rate");
        if (took < 0) {
            fail("reading-rate",
                 format("a text put into value was still there after %ld ms; "
                        "the page copies the record every %ld ms",
                        limit, kReadingPeriodMs));
            return true;
        }
        slowest = std::max(slowest, took);
    }
    pass("reading-rate",
         format("value written over within %ld ms, %d times out of %d", slowest, kRateProbes,
                kRateProbes));
    return true;
}

bool ContractCheck::checkWavelengths()
{
    const long followLimit = std::max(5000L, 2 * m_retuneMs + 1000);
    const int first = std::max(0, wavelengthIndexOf(textOf(take().wavelenth)));
    long slowest = -1;
    std::string slowestAt;
    std::string failure;
    for (int step = 1; step <= kWavelengthCount && failure.empty(); ++step) {
        const int target = (first + step) % kWavelengthCount;
        const long nm = std::atol(kWavelengths[target]);
        const_cast<OpmShareRecord*>(m_record)->wavelenthTarget = target;
        std::string reported;
        int32_t targetSeen = target;
        const long took = watch(followLimit, [&](const OpmShareRecord& r) {
            reported = quoted(r.wavelenth);
            targetSeen = r.wavelenthTarget;
            return targetSeen != target || std::atol(textOf(r.wavelenth).c_str()) == nm;
        });
        if (took == -2)
            return lost("follows-target");
        if (targetSeen != target)
            failure = format("wavelenthTarget became %d after the page wrote %d: only the page "
                             "writes it",
                             int(targetSeen), target);
        else if (took < 0)
            failure = format("%ld nm (target %d) not reported within %ld ms; wavelenth stayed %s",
                             nm, target, followLimit, reported.c_str());
        else if (took > slowest) {
            slowest = took;
            slowestAt = kWavelengths[target];
        }
    }
    if (!failure.empty())
        fail("follows-target", failure);
    else
        pass("follows-target", "reported each of the five wavelengths that the page selected");
    if (slowest < 0)
        m_results.erase("retune-time");
    else if (slowest <= m_retuneMs)
        pass(
            "retune-time",
            format("slowest %ld ms (%s nm), bound %ld ms", slowest, slowestAt.c_str(), m_retuneMs));
    else
        fail("retune-time",
             format("%s nm reported %ld ms after it was selected; the bound is "
                    "%ld ms (--retune-ms)",
                    slowestAt.c_str(), slowest, m_retuneMs));
    m_whyNotRun = "needs a reader that follows wavelenthTarget";
    return true;
}

// The page clears a request when it saves; a request is the reader's alone to make.
bool ContractCheck::checkNeedSave()
{
    OpmShareRecord* record = const_cast<OpmShareRecord*>(m_record);
    record->needSave = 1;
    int32_t seen = 1;
    long took = watch(kSaveWatchMs, [&](const OpmShareRecord& r) {
        seen = r.needSave;
        return seen != 1;
    });
    if (took == -2)
        return lost("needSave");
    if (took >= 0) {
        fail("needSave",
             format("a pending request (1) became %d after %ld ms: only the page "
                    "clears it, when it saves",
                    int(seen), took));
        return true;
    }
    record->needSave = 0;
    took = watch(kSaveWatchMs, [&](const OpmShareRecord& r) {
        seen = r.needSave;
        return seen != 0;
    });
    if (took == -2)
        return lost("needSave");
    if (took >= 0)
        fail("needSave",
             format("became %d %ld ms after the page cleared it, with no save key "
                    "pressed",
                    int(seen), took));
    else
        pass("needSave", "a pending request was left to the page; none was made unasked");
    return true;
}

void ContractCheck::judgeSamples()
{
    for (const SampleRule& rule : m_rules) {
        if (rule.samples == 0)
            continue;
        if (rule.breakAtMs >= 0)
            fail(rule.name, rule.firstBreak + format(" (%ld ms after the start)", rule.breakAtMs));
        else
            pass(rule.name, format("kept in %d samples", rule.samples));
    }
}

void ContractCheck::endReader(CheckReport* report)
{
    if (m_record) {
        const OpmShareRecord last = take();
        if (last.pid == m_reader.pid())
            report->note("pid", format("%d, the started process", int(last.pid)));
        else
            report->note(
                "pid", format("%d; the started process is %d", int(last.pid), int(m_reader.pid())));
        report->note("deviceType", quoted(last.deviceType));
    }
    long took = 0;
    std::string ended;
    if (!m_reader.running())
        ended = "not sent: the reader had ended (" + m_reader.howItEnded() + ")";
    else if (m_reader.terminate(kTermGraceMs, &took))
        ended = format("ended (%s) after %ld ms", m_reader.howItEnded().c_str(), took);
    else
        ended = format("still running %ld ms later; ended with SIGKILL", took);
    if (m_record)
        ended += format(", leaving flag %d", int(m_record->flag));
    report->note("SIGTERM", ended);
}

void ContractCheck::run(CheckReport* report)
{
    m_startMs = nowMs();
    if (findSegment() && awaitFirstWrite() && checkReadingRate() && checkWavelengths())
        checkNeedSave();
    judgeSamples();
    endReader(report);
    for (const char* name : kCheckNames) {
        const auto found = m_results.find(name);
        if (found == m_results.end())
            report->notRun(name, m_whyNotRun);
        else if (found->second.state == CheckReport::Passed)
            report->pass(name, found->second.detail);
        else
            report->fail(name, found->second.detail);
    }
}

// --- the command --------------------------------------------------------------------------------

struct Options
{
    std::string junit;
    long retuneMs = kDefaultRetuneMs;
    std::vector<std::string> command;
};

void printUsage(std::FILE* out) { std::fputs(ReaderCheck::kUsage, out); }

// 0: run, 1: bad usage, 2: help shown.
int parseOptions(int argc, char** argv, Options* options)
{
    int i = 1;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            printUsage(stdout);
            return 2;
        } else if (arg == "--junit" && i + 1 < argc) {
            options->junit = argv[++i];
        } else if (arg == "--retune-ms" && i + 1 < argc) {
            char* end = nullptr;
            options->retuneMs = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || options->retuneMs < 100 || options->retuneMs > 60000) {
                std::fprintf(stderr, "opmrecord check: bad --retune-ms \"%s\"\n", argv[i]);
                return 1;
            }
        } else if (arg == "--") {
            ++i;
            break;
        } else if (arg.compare(0, 1, "-") == 0) {
            std::fprintf(stderr, "opmrecord check: unknown or incomplete option \"%s\"\n", argv[i]);
            printUsage(stderr);
            return 1;
        } else {
            break;
        }
    }
    options->command.assign(argv + i, argv + argc);
    if (options->command.empty()) {
        std::fputs("opmrecord check: no reader command given\n", stderr);
        printUsage(stderr);
        return 1;
    }
    return 0;
}

std::string currentFolder()
{
    char path[4096];
    return getcwd(path, sizeof path) ? std::string(path) : std::string(".");
}

} // namespace

int ReaderCheck::run(int argc, char** argv)
{
    Options options;
    const int parsed = parseOptions(argc, argv, &options);
    if (parsed != 0)
        return parsed == 2 ? 0 : 2;
    options.command[0] = commandPathFrom(currentFolder(), options.command[0]);

    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    CheckedReader reader;
    std::string error;
    if (!reader.prepare(&error) || !reader.start(options.command, &error)) {
        std::fprintf(stderr, "opmrecord check: %s\n", error.c_str());
        return 2;
    }
    std::printf("opmrecord check: \"%s\" in %s (key 0x%08x)\n", options.command[0].c_str(),
                reader.folder().c_str(), unsigned(reader.key()));
    std::fflush(stdout);

    CheckReport report;
    {
        ContractCheck check(reader, options.retuneMs);
        check.run(&report);
    }
    report.print(stdout);
    if (!options.junit.empty() && !report.writeJUnit(options.junit, "opmrecord check")) {
        std::fprintf(stderr, "opmrecord check: cannot write %s\n", options.junit.c_str());
        return 2;
    }
    if (g_interrupted)
        return 130;
    return report.allPassed() ? 0 : 1;
}
