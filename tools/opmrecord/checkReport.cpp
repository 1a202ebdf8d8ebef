#include "checkReport.h"

namespace {

const char* stateWord(CheckReport::State state)
{
    switch (state) {
    case CheckReport::Passed:
        return "pass";
    case CheckReport::Failed:
        return "FAIL";
    case CheckReport::NotRun:
        break;
    }
    return "skip";
}

} // namespace

void CheckReport::add(const std::string& name, State state, const std::string& detail)
{
    Verdict verdict = { name, state, detail };
    m_verdicts.push_back(verdict);
}

void CheckReport::pass(const std::string& name, const std::string& detail)
{
    add(name, Passed, detail);
}

void CheckReport::fail(const std::string& name, const std::string& detail)
{
    add(name, Failed, detail);
}

void CheckReport::notRun(const std::string& name, const std::string& why)
{
    add(name, NotRun, why);
}

void CheckReport::note(const std::string& name, const std::string& text)
{
    Note note = { name, text };
    m_notes.push_back(note);
}

int CheckReport::count(State state) const
{
    int n = 0;
    for (const Verdict& verdict : m_verdicts)
        n += verdict.state == state;
    return n;
}

void CheckReport::print(std::FILE* out) const
{
    for (const Verdict& verdict : m_verdicts)
        std::fprintf(out, "%s  %-16s %s\n", stateWord(verdict.state), verdict.name.c_str(),
                     verdict.detail.c_str());
    for (const Note& note : m_notes)
        std::fprintf(out, "note  %-16s %s\n", note.name.c_str(), note.text.c_str());
    std::fprintf(out, "%d checks: %d passed, %d failed, %d not run\n", int(m_verdicts.size()),
                 count(Passed), count(Failed), count(NotRun));
}

std::string xmlEscaped(const std::string& text)
{
    std::string out;
    for (const unsigned char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (c == '\t' || c == '\n' || (c >= 0x20 && c < 0x7f)) {
                out += char(c);
            } else if (c >= 0x80) {
                char ref[8];
                std::snprintf(ref, sizeof ref, "&#%u;", unsigned(c));
                out += ref;
            } else {
                out += '?'; // XML 1.0 has no way to write these
            }
        }
    }
    return out;
}

bool CheckReport::writeJUnit(const std::string& path, const std::string& suiteName) const
{
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out)
        return false;
    const std::string suite = xmlEscaped(suiteName);
    std::fprintf(out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    std::fprintf(out, "<testsuites>\n");
    std::fprintf(out, "  <testsuite name=\"%s\" tests=\"%d\" failures=\"%d\" skipped=\"%d\">\n",
                 suite.c_str(), int(m_verdicts.size()), count(Failed), count(NotRun));
    std::fprintf(out, "    <properties>\n");
    for (const Note& note : m_notes)
        std::fprintf(out, "      <property name=\"%s\" value=\"%s\"/>\n",
                     xmlEscaped(note.name).c_str(), xmlEscaped(note.text).c_str());
    std::fprintf(out, "    </properties>\n");
    for (const Verdict& verdict : m_verdicts) {
        const std::string name = xmlEscaped(verdict.name);
        const std::string detail = xmlEscaped(verdict.detail);
        std::fprintf(out, "    <testcase classname=\"%s\" name=\"%s\">\n", suite.c_str(),
                     name.c_str());
        if (verdict.state == Failed)
            std::fprintf(out, "      <failure message=\"%s\"/>\n", detail.c_str());
        else if (verdict.state == NotRun)
            std::fprintf(out, "      <skipped message=\"%s\"/>\n", detail.c_str());
        else
            std::fprintf(out, "      <system-out>%s</system-out>\n", detail.c_str());
        std::fprintf(out, "    </testcase>\n");
    }
    std::fprintf(out, "  </testsuite>\n</testsuites>\n");
    return std::fclose(out) == 0;
}
