#ifndef VERIFICATIONTEXT_H
#define VERIFICATIONTEXT_H

#include <string>

namespace PluginVerify {

// What the set's shell accepts: its Qt version and build key.
constexpr const char kPattern[] = "QT_PLUGIN_VERIFICATION_DATA";
constexpr const char kQtVersion[] = "4.8.4";
constexpr const char kBuildKey[] = "i386 linux g++-4 full-config";

struct VerificationData
{
    std::string pattern;
    std::string version;
    std::string debug;
    std::string buildKey;
};

// Splits "pattern=...\nversion=...\ndebug=...\nbuildkey=..." into its items. The pattern line
// comes first; each of the other three must be there once; unknown items are ignored.
bool parseVerificationText(const std::string& text, VerificationData* data, std::string* error);

// Parses and compares with what the shell accepts; error says what does not match.
bool checkVerificationText(const std::string& text, std::string* error);

// The text of a section: up to its first NUL (or the whole section without one).
std::string sectionText(const char* bytes, size_t size);

} // namespace PluginVerify

#endif // VERIFICATIONTEXT_H
