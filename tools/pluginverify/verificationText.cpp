#include "verificationText.h"

#include <cstdio>
#include <cstring>

namespace PluginVerify {

namespace {

struct Item
{
    const char* key;
    std::string VerificationData::*field;
};

constexpr Item kItems[] = {
    { "version", &VerificationData::version },
    { "debug", &VerificationData::debug },
    { "buildkey", &VerificationData::buildKey },
};

// Shown in messages: the value as found, with anything unprintable escaped.
std::string quoted(const std::string& value)
{
    std::string out = "\"";
    for (unsigned char c : value) {
        if (c >= 0x20 && c < 0x7f && c != '"' && c != '\\') {
            out += char(c);
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02x", c);
            out += escaped;
        }
    }
    return out + "\"";
}

bool splitLine(const std::string& line, std::string* key, std::string* value)
{
    const size_t equals = line.find('=');
    if (equals == std::string::npos)
        return false;
    *key = line.substr(0, equals);
    *value = line.substr(equals + 1);
    return true;
}

bool mismatch(const char* what, const std::string& found, const char* expected, std::string* error)
{
    if (found == expected)
        return false;
    if (error)
        *error = std::string(what) + " " + quoted(found) + " is not " + quoted(expected);
    return true;
}

} // namespace

std::string sectionText(const char* bytes, size_t size)
{
    const void* nul = std::memchr(bytes, '\0', size);
    return std::string(bytes, nul ? size_t(static_cast<const char*>(nul) - bytes) : size);
}

bool parseVerificationText(const std::string& text, VerificationData* data, std::string* error)
{
    std::string reason;
    VerificationData parsed;
    bool seen[sizeof kItems / sizeof kItems[0]] = {};
    size_t start = 0;
    bool first = true;
    while (reason.empty() && start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string key, value;
        const std::string line = text.substr(start, end - start);
        start = end + 1;
        if (!splitLine(line, &key, &value)) {
            if (first || !line.empty())
                reason = "malformed line " + quoted(line);
        } else if (first) {
            if (key != "pattern")
                reason = "the text does not start with the pattern line";
            parsed.pattern = value;
        } else {
            for (size_t i = 0; i < sizeof kItems / sizeof kItems[0]; ++i) {
                if (key != kItems[i].key)
                    continue;
                if (seen[i])
                    reason = "item " + key + " given twice";
                seen[i] = true;
                parsed.*kItems[i].field = value;
            }
        }
        first = false;
    }
    for (size_t i = 0; reason.empty() && i < sizeof kItems / sizeof kItems[0]; ++i) {
        if (!seen[i])
            reason = std::string("no ") + kItems[i].key + " item";
    }
    if (!reason.empty()) {
        if (error)
            *error = reason;
        return false;
    }
    *data = parsed;
    return true;
}

bool checkVerificationText(const std::string& text, std::string* error)
{
    VerificationData data;
    if (!parseVerificationText(text, &data, error))
        return false;
    if (mismatch("pattern", data.pattern, kPattern, error)
        || mismatch("Qt version", data.version, kQtVersion, error)
        || mismatch("build key", data.buildKey, kBuildKey, error))
        return false;
    if (data.debug != "true" && data.debug != "false") {
        if (error)
            *error = "debug " + quoted(data.debug) + " is neither true nor false";
        return false;
    }
    return true;
}

} // namespace PluginVerify
