#include "plate2promserv.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace halmanager {

const char* const PlatE2PromServ::kDataFile = "/etc/brova/e2prom.txt";

PlatE2PromServ::PlatE2PromServ() : m_file(kDataFile) { }

PlatE2PromServ::PlatE2PromServ(const std::string& root) : m_file(root + kDataFile) { }

bool PlatE2PromServ::readItem(const char* key, std::string* value) const
{
    std::ifstream in(m_file.c_str());
    const std::string prefix = std::string(key) + "=";
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line[line.size() - 1] == '\r')
            line.erase(line.size() - 1);
        if (line.compare(0, prefix.size(), prefix) == 0) {
            *value = line.substr(prefix.size());
            return true;
        }
    }
    return false;
}

int PlatE2PromServ::ReadMacAddr(char* mac)
{
    std::string text;
    if (!mac || !readItem("mac", &text))
        return -1;
    unsigned char bytes[6];
    size_t pos = 0;
    for (int i = 0; i < 6; ++i) {
        if (pos + 2 > text.size() || !std::isxdigit(static_cast<unsigned char>(text[pos]))
            || !std::isxdigit(static_cast<unsigned char>(text[pos + 1])))
            return -2;
        bytes[i] = static_cast<unsigned char>(strtol(text.substr(pos, 2).c_str(), 0, 16));
        pos += 2;
        if (i < 5) {
            if (pos >= text.size() || (text[pos] != ':' && text[pos] != '-'))
                return -2;
            ++pos;
        }
    }
    if (pos != text.size())
        return -2;
    std::memcpy(mac, bytes, sizeof bytes);
    return 0;
}

// The serial goes into reports as it is: only printable ASCII passes.
static bool isPlainText(const std::string& text)
{
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] < 0x20 || text[i] > 0x7e)
            return false;
    }
    return true;
}

int PlatE2PromServ::ReadSN(char* serial)
{
    std::string text;
    if (!serial || !readItem("sn", &text) || text.empty() || text.size() >= kSerialSize
        || !isPlainText(text))
        return -1;
    std::memcpy(serial, text.c_str(), text.size() + 1);
    return 0;
}

} // namespace halmanager
