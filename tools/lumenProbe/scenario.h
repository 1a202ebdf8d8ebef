#ifndef SCENARIO_H
#define SCENARIO_H

#include "opmShareRecord.h"

#include <cstdio>
#include <string>
#include <vector>

// A timed list of record states, for tests that need the reader to do exactly the same thing
// on every run. The line format is described in docs/lumenProbe.md:
//   # comment
//   <ms> field=value field="text with blanks" ...
//   <ms> end
struct ScenarioItem
{
    std::string field;
    std::string value;
};

struct ScenarioStep
{
    long long atMs = 0;
    bool end = false;
    std::vector<ScenarioItem> items;
};

class Scenario
{
public:
    static constexpr size_t kMaxLineLength = 1024;
    static constexpr size_t kMaxSteps = 100000;
    static constexpr long long kMaxTimeMs = 24LL * 3600 * 1000;

    // Reads a scenario; each line that cannot be used is reported into problems and skipped.
    // False only when the file cannot be read at all.
    bool load(const std::string& path, std::vector<std::string>* problems);
    bool load(std::FILE* file, const std::string& name, std::vector<std::string>* problems);

    // Applies every step due at elapsedMs; false once an "end" step has been reached.
    bool play(OpmShareRecord* record, long long elapsedMs);
    bool finished() const { return m_next >= m_steps.size(); }
    const std::vector<ScenarioStep>& steps() const { return m_steps; }

private:
    std::vector<ScenarioStep> m_steps;
    size_t m_next = 0;
};

// One line; false with a reason when it cannot be used. Warnings (texts cut to their field)
// do not stop the line. A blank or comment line gives true and a step without items.
bool parseScenarioLine(const std::string& line, ScenarioStep* step, std::string* problem,
                       std::vector<std::string>* warnings);

#endif // SCENARIO_H
