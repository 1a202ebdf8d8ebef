#ifndef PLATE2PROMSERV_H
#define PLATE2PROMSERV_H

#include <string>

namespace halmanager {

// The set's identity EEPROM. Here it is one small text file:
//   mac=00:1a:2b:3c:4d:5e
//   sn=BR-0001234
class PlatE2PromServ
{
public:
    static const char* const kDataFile;
    enum { kSerialSize = 32 };

    PlatE2PromServ();
    // Reads the data file below root instead of "/" (for the demo and the tests).
    explicit PlatE2PromServ(const std::string& root);

    // Fills six bytes; 0 on success.
    int ReadMacAddr(char* mac);
    // Fills a NUL-terminated text of at most kSerialSize - 1 characters; 0 on success.
    int ReadSN(char* serial);

    const std::string& dataFile() const { return m_file; }

private:
    bool readItem(const char* key, std::string* value) const;

    std::string m_file;
};

} // namespace halmanager

#endif // PLATE2PROMSERV_H
