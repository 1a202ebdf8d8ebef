#ifndef ELFSECTION_H
#define ELFSECTION_H

#include <string>
#include <vector>

namespace PluginVerify {

// Sections larger than this are refused: a verification text is a few lines.
constexpr unsigned long long kMaxSectionSize = 64 * 1024;

// Reads the bytes of the section called name from an ELF file (32 or 64 bit, little-endian).
// Every offset and size in the file is checked against the file; a file that is not ELF, is
// truncated or points outside itself gives false and a reason in error.
bool readElfSection(const std::string& path, const std::string& name, std::vector<char>* bytes,
                    std::string* error);

} // namespace PluginVerify

#endif // ELFSECTION_H
