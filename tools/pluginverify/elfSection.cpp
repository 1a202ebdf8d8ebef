#include "elfSection.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>

namespace PluginVerify {

namespace {

constexpr unsigned char kElfMagic[4] = { 0x7f, 'E', 'L', 'F' };
constexpr int kClass32 = 1;
constexpr int kClass64 = 2;
constexpr int kLittleEndian = 1;
constexpr uint32_t kNoBits = 8; // SHT_NOBITS: the section takes no room in the file
constexpr uint32_t kExtendedIndex = 0xffff; // SHN_XINDEX
// Names longer than this are not the one looked for anyway.
constexpr uint64_t kMaxNameRead = 256;

uint64_t readLe(const unsigned char* p, size_t width)
{
    uint64_t value = 0;
    for (size_t i = width; i > 0; --i)
        value = (value << 8) | p[i - 1];
    return value;
}

// Offsets of the header items that differ between the two classes.
struct ElfLayout
{
    size_t headerSize;
    size_t shoff, shoffWidth;
    size_t shentsize, shnum, shstrndx;
    size_t minSectionHeader;
    size_t shType, shOffset, shSize, shLink, wordWidth;
};

constexpr ElfLayout kLayout32 = { 52, 0x20, 4, 0x2e, 0x30, 0x32, 40, 4, 16, 20, 24, 4 };
constexpr ElfLayout kLayout64 = { 64, 0x28, 8, 0x3a, 0x3c, 0x3e, 64, 4, 24, 32, 40, 8 };

struct SectionHeader
{
    uint32_t name;
    uint32_t type;
    uint64_t offset;
    uint64_t size;
    uint32_t link;
};

// Random access to a file that refuses any read reaching past its end.
class BoundedFile
{
public:
    explicit BoundedFile(const std::string& path) : m_file(std::fopen(path.c_str(), "rb")) { }
    ~BoundedFile()
    {
        if (m_file)
            std::fclose(m_file);
    }
    BoundedFile(const BoundedFile&) = delete;
    BoundedFile& operator=(const BoundedFile&) = delete;

    bool open(std::string* error)
    {
        struct stat info;
        if (!m_file || fstat(fileno(m_file), &info) != 0) {
            *error = std::string("cannot open the file: ") + std::strerror(errno);
            return false;
        }
        if (!S_ISREG(info.st_mode)) {
            *error = "not a regular file";
            return false;
        }
        m_size = uint64_t(info.st_size);
        return true;
    }

    uint64_t size() const { return m_size; }

    bool contains(uint64_t offset, uint64_t length) const
    {
        return offset <= m_size && length <= m_size - offset;
    }

    bool read(uint64_t offset, void* out, size_t length) const
    {
        if (!contains(offset, length))
            return false;
        if (length == 0)
            return true;
        return fseeko(m_file, off_t(offset), SEEK_SET) == 0
            && std::fread(out, 1, length, m_file) == length;
    }

private:
    std::FILE* m_file;
    uint64_t m_size = 0;
};

class ElfReader
{
public:
    explicit ElfReader(const BoundedFile& file) : m_file(file) { }

    bool readHeader(std::string* error);
    bool findSection(const std::string& name, SectionHeader* found, std::string* error) const;

private:
    bool sectionHeader(uint64_t index, SectionHeader* header) const;
    bool sectionName(const SectionHeader& names, uint32_t offset, std::string* name) const;

    const BoundedFile& m_file;
    const ElfLayout* m_layout = nullptr;
    uint64_t m_shoff = 0;
    uint64_t m_shentsize = 0;
    uint64_t m_shnum = 0;
    uint64_t m_shstrndx = 0;
};

bool ElfReader::readHeader(std::string* error)
{
    unsigned char ident[16];
    if (!m_file.read(0, ident, sizeof ident) || std::memcmp(ident, kElfMagic, 4) != 0) {
        *error = "not an ELF file";
        return false;
    }
    if (ident[4] != kClass32 && ident[4] != kClass64) {
        *error = "unknown ELF class";
        return false;
    }
    if (ident[5] != kLittleEndian) {
        *error = "not a little-endian ELF file";
        return false;
    }
    m_layout = ident[4] == kClass64 ? &kLayout64 : &kLayout32;
    unsigned char header[64];
    if (!m_file.read(0, header, m_layout->headerSize)) {
        *error = "truncated ELF header";
        return false;
    }
    m_shoff = readLe(header + m_layout->shoff, m_layout->shoffWidth);
    m_shentsize = readLe(header + m_layout->shentsize, 2);
    m_shnum = readLe(header + m_layout->shnum, 2);
    m_shstrndx = readLe(header + m_layout->shstrndx, 2);
    if (m_shoff == 0) {
        *error = "the file has no section table";
        return false;
    }
    if (m_shentsize < m_layout->minSectionHeader) {
        *error = "section header size too small";
        return false;
    }
    // Many sections: the real count and the name table's index sit in the first header.
    SectionHeader first;
    if ((m_shnum == 0 || m_shstrndx == kExtendedIndex) && !sectionHeader(0, &first)) {
        *error = "section table outside the file";
        return false;
    }
    if (m_shnum == 0)
        m_shnum = first.size;
    if (m_shstrndx == kExtendedIndex)
        m_shstrndx = first.link;
    // Each header takes room in the file, so a count beyond that is a lie.
    if (m_shnum == 0 || m_shnum > m_file.size() / m_shentsize
        || !m_file.contains(m_shoff, m_shnum * m_shentsize)) {
        *error = "section table outside the file";
        return false;
    }
    if (m_shstrndx >= m_shnum) {
        *error = "section name table index out of range";
        return false;
    }
    return true;
}

bool ElfReader::sectionHeader(uint64_t index, SectionHeader* header) const
{
    if (index > (UINT64_MAX - m_shoff) / m_shentsize)
        return false;
    unsigned char raw[64];
    const ElfLayout& l = *m_layout;
    if (!m_file.read(m_shoff + index * m_shentsize, raw, l.minSectionHeader))
        return false;
    header->name = uint32_t(readLe(raw, 4));
    header->type = uint32_t(readLe(raw + l.shType, 4));
    header->offset = readLe(raw + l.shOffset, l.wordWidth);
    header->size = readLe(raw + l.shSize, l.wordWidth);
    header->link = uint32_t(readLe(raw + l.shLink, 4));
    return true;
}

bool ElfReader::sectionName(const SectionHeader& names, uint32_t offset, std::string* name) const
{
    if (names.type == kNoBits || offset >= names.size || !m_file.contains(names.offset, names.size))
        return false;
    const uint64_t length = std::min(names.size - offset, kMaxNameRead);
    char buffer[kMaxNameRead];
    if (!m_file.read(names.offset + offset, buffer, size_t(length)))
        return false;
    const void* nul = std::memchr(buffer, '\0', size_t(length));
    if (!nul)
        return false;
    name->assign(buffer, size_t(static_cast<const char*>(nul) - buffer));
    return true;
}

bool ElfReader::findSection(const std::string& name, SectionHeader* found, std::string* error) const
{
    SectionHeader names;
    if (!sectionHeader(m_shstrndx, &names) || names.type == kNoBits
        || !m_file.contains(names.offset, names.size)) {
        *error = "section name table outside the file";
        return false;
    }
    for (uint64_t i = 0; i < m_shnum; ++i) {
        SectionHeader header;
        std::string candidate;
        if (sectionHeader(i, &header) && sectionName(names, header.name, &candidate)
            && candidate == name) {
            *found = header;
            return true;
        }
    }
    *error = "no " + name + " section";
    return false;
}

} // namespace

bool readElfSection(const std::string& path, const std::string& name, std::vector<char>* bytes,
                    std::string* error)
{
    std::string reason;
    BoundedFile file(path);
    ElfReader elf(file);
    SectionHeader section;
    bool ok =
        file.open(&reason) && elf.readHeader(&reason) && elf.findSection(name, &section, &reason);
    if (ok && section.type == kNoBits) {
        reason = name + " section holds no data";
        ok = false;
    } else if (ok && section.size > kMaxSectionSize) {
        reason = name + " section too large";
        ok = false;
    } else if (ok) {
        bytes->resize(size_t(section.size));
        ok = file.read(section.offset, bytes->data(), bytes->size());
        if (!ok)
            reason = name + " section outside the file";
    }
    if (!ok) {
        bytes->clear();
        if (error)
            *error = reason;
    }
    return ok;
}

} // namespace PluginVerify
