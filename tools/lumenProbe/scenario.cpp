#include "scenario.h"

#include "recordFields.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

bool isHex(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

bool readTime(const std::string& word, long long* ms)
{
    if (word.empty() || word.size() > 12)
        return false;
    for (char c : word) {
        if (!std::isdigit(static_cast<unsigned char>(c)))
            return false;
    }
    *ms = std::strtoll(word.c_str(), nullptr, 10);
    return *ms <= Scenario::kMaxTimeMs;
}

// A quoted value: \" \\ and \xHH (not \x00) are the only escapes.
bool readQuoted(const std::string& line, size_t* pos, std::string* value, std::string* problem)
{
    ++*pos;
    while (*pos < line.size() && line[*pos] != '"') {
        char c = line[(*pos)++];
        if (c == '\\') {
            if (*pos < line.size() && (line[*pos] == '"' || line[*pos] == '\\')) {
                c = line[(*pos)++];
            } else if (*pos + 2 < line.size() && line[*pos] == 'x' && isHex(line[*pos + 1])
                       && isHex(line[*pos + 2])) {
                c = char(std::strtol(line.substr(*pos + 1, 2).c_str(), nullptr, 16));
                *pos += 3;
                if (c == '\0') {
                    *problem = "\\x00 cannot be part of a text";
                    return false;
                }
            } else {
                *problem = "unknown escape in a quoted value";
                return false;
            }
        }
        value->push_back(c);
    }
    if (*pos >= line.size()) {
        *problem = "quoted value without its closing quote";
        return false;
    }
    ++*pos;
    return true;
}

bool readWord(const std::string& line, size_t* pos, std::string* word)
{
    const size_t start = *pos;
    while (*pos < line.size() && !isBlank(line[*pos]))
        ++*pos;
    *word = line.substr(start, *pos - start);
    return !word->empty();
}

// field=value or field="value"
bool readItem(const std::string& line, size_t* pos, ScenarioItem* item, std::string* problem)
{
    const size_t equals = line.find('=', *pos);
    size_t nameEnd = *pos;
    while (nameEnd < line.size() && !isBlank(line[nameEnd]) && line[nameEnd] != '=')
        ++nameEnd;
    if (equals == std::string::npos || equals != nameEnd) {
        *problem = "expected field=value";
        return false;
    }
    item->field = line.substr(*pos, equals - *pos);
    *pos = equals + 1;
    if (*pos < line.size() && line[*pos] == '"')
        return readQuoted(line, pos, &item->value, problem);
    readWord(line, pos, &item->value);
    return true;
}

bool checkItem(const ScenarioItem& item, std::string* problem, std::vector<std::string>* warnings)
{
    const RecordFields::Check result = RecordFields::check(item.field, item.value);
    if (result == RecordFields::Check::TooLong) {
        warnings->push_back(RecordFields::describe(result, item.field, item.value) + ", cut");
        return true;
    }
    if (result != RecordFields::Check::Ok) {
        *problem = RecordFields::describe(result, item.field, item.value);
        return false;
    }
    return true;
}

bool hasControlCharacter(const std::string& line)
{
    for (char c : line) {
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t')
            return true;
    }
    return false;
}

// Reads one line of at most limit characters; a longer one is consumed and flagged.
bool readLine(std::FILE* file, std::string* line, bool* tooLong)
{
    line->clear();
    *tooLong = false;
    int c;
    while ((c = std::fgetc(file)) != EOF && c != '\n') {
        if (line->size() < Scenario::kMaxLineLength)
            line->push_back(char(c));
        else
            *tooLong = true;
    }
    if (!line->empty() && line->back() == '\r')
        line->pop_back();
    return c != EOF || !line->empty() || *tooLong;
}

} // namespace

bool parseScenarioLine(const std::string& line, ScenarioStep* step, std::string* problem,
                       std::vector<std::string>* warnings)
{
    *step = ScenarioStep();
    if (hasControlCharacter(line)) {
        *problem = "control character in the line";
        return false;
    }
    size_t pos = 0;
    while (pos < line.size() && isBlank(line[pos]))
        ++pos;
    if (pos == line.size() || line[pos] == '#')
        return true;
    std::string word;
    readWord(line, &pos, &word);
    if (!readTime(word, &step->atMs)) {
        *problem = "expected a time in milliseconds (0 to 86400000) first";
        return false;
    }
    for (;;) {
        while (pos < line.size() && isBlank(line[pos]))
            ++pos;
        if (pos == line.size() || line[pos] == '#')
            break;
        if (line.compare(pos, 3, "end") == 0
            && (pos + 3 == line.size() || isBlank(line[pos + 3]))) {
            step->end = true;
            pos += 3;
            continue;
        }
        ScenarioItem item;
        if (!readItem(line, &pos, &item, problem) || !checkItem(item, problem, warnings))
            return false;
        step->items.push_back(item);
    }
    if (!step->end && step->items.empty()) {
        *problem = "a time without anything to do";
        return false;
    }
    return true;
}

bool Scenario::load(const std::string& path, std::vector<std::string>* problems)
{
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) {
        problems->push_back(path + ": cannot be read");
        return false;
    }
    const bool ok = load(file, path, problems);
    std::fclose(file);
    return ok;
}

bool Scenario::load(std::FILE* file, const std::string& name, std::vector<std::string>* problems)
{
    m_steps.clear();
    m_next = 0;
    std::string line;
    bool tooLong = false;
    for (size_t number = 1; readLine(file, &line, &tooLong); ++number) {
        const std::string where = name + ":" + std::to_string(number) + ": ";
        if (m_steps.size() >= kMaxSteps) {
            problems->push_back(where + "too many steps, the rest is ignored");
            break;
        }
        ScenarioStep step;
        std::string problem;
        std::vector<std::string> warnings;
        if (tooLong)
            problem = "line longer than " + std::to_string(kMaxLineLength) + " characters";
        else if (parseScenarioLine(line, &step, &problem, &warnings) && !m_steps.empty()
                 && step.atMs < m_steps.back().atMs && (step.end || !step.items.empty()))
            problem = "time goes back";
        for (const std::string& warning : warnings)
            problems->push_back(where + warning);
        if (!problem.empty())
            problems->push_back(where + problem + ", line skipped");
        else if (step.end || !step.items.empty())
            m_steps.push_back(step);
    }
    return !std::ferror(file);
}

bool Scenario::play(OpmShareRecord* record, long long elapsedMs)
{
    while (m_next < m_steps.size() && m_steps[m_next].atMs <= elapsedMs) {
        const ScenarioStep& step = m_steps[m_next++];
        // Texts before numbers: the page may look at any moment and trusts flag last.
        for (const ScenarioItem& item : step.items) {
            if (RecordFields::find(item.field)->kind == RecordFields::Kind::Text)
                RecordFields::set(record, item.field, item.value);
        }
        for (const ScenarioItem& item : step.items) {
            if (RecordFields::find(item.field)->kind == RecordFields::Kind::Integer)
                RecordFields::set(record, item.field, item.value);
        }
        if (step.end)
            return false;
    }
    return true;
}
