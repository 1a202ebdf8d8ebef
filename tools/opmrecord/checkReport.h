#ifndef CHECKREPORT_H
#define CHECKREPORT_H

#include <cstdio>
#include <string>
#include <vector>

// What a reader check found: a verdict per named check, and notes on what the system leaves to
// the reader. Printed as plain lines, or written as JUnit XML for a reader maker's CI.
class CheckReport
{
public:
    enum State { Passed, Failed, NotRun };

    struct Verdict
    {
        std::string name;
        State state;
        std::string detail;
    };

    struct Note
    {
        std::string name;
        std::string text;
    };

    void pass(const std::string& name, const std::string& detail);
    void fail(const std::string& name, const std::string& detail);
    void notRun(const std::string& name, const std::string& why);
    void note(const std::string& name, const std::string& text);

    const std::vector<Verdict>& verdicts() const { return m_verdicts; }
    int count(State state) const;
    bool allPassed() const { return count(Passed) == int(m_verdicts.size()); }

    // "pass  key  ..." lines, the notes, then a line that sums up.
    void print(std::FILE* out) const;
    bool writeJUnit(const std::string& path, const std::string& suiteName) const;

private:
    void add(const std::string& name, State state, const std::string& detail);

    std::vector<Verdict> m_verdicts;
    std::vector<Note> m_notes;
};

// Text for XML content and attribute values: markup escaped, control characters and anything
// outside ASCII as character references or "?" where XML allows none.
std::string xmlEscaped(const std::string& text);

#endif // CHECKREPORT_H
