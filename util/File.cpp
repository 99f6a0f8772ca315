#include "util/File.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "util/OsFiles.h"

namespace {

constexpr size_t kNameChars = 255;
constexpr size_t kConstructorNameChars = 256;
constexpr size_t kCopyChunk = 1024;

std::int32_t to32(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

file_t::file_t() : name{}, fp(nullptr), len(0), pos(0), datum{} {}

file_t::file_t(const char* fileName, std::FILE* stream, long length, long)
    : name{}, fp(stream), len(to32(length)), pos(0), datum{} {
    setName(fileName, kConstructorNameChars);
}

file_t::~file_t() {
    file_t::Close();
}

void file_t::setName(const char* newName, size_t maxChars) {
    char copy[sizeof name] = {};
    if (newName) {
        std::memcpy(copy, newName, strnlen(newName, maxChars));
    }
    std::memcpy(name, copy, sizeof name);
}

bool file_t::OpenWrite(const char* fileName) {
    // Copied first: the name may be this object's own.
    const std::string path = fileName ? fileName : "";
    Close();
    setName(path.c_str(), kNameChars);
    fp = zoka::osFiles().openStream(path, "wb");
    if (!fp) {
        Close();
        return false;
    }
    return true;
}

bool file_t::OpenRead(const char* fileName) {
    const std::string path = fileName ? fileName : "";
    Close();
    setName(path.c_str(), kNameChars);
    get_file_time(path.c_str(), &datum);
    fp = zoka::osFiles().openStream(path, "rb");
    if (fp && std::fseek(fp, 0, SEEK_END) == 0) {
        const long end = std::ftell(fp);
        if (end >= 0 && end <= std::numeric_limits<std::int32_t>::max() && std::fseek(fp, 0, SEEK_SET) == 0) {
            len = static_cast<std::int32_t>(end);
            return true;
        }
    }
    Close();
    return false;
}

void file_t::Close() {
    if (fp) {
        std::fclose(fp);
    }
    std::memset(name, 0, sizeof name);
    fp = nullptr;
    len = 0;
    pos = 0;
}

void file_t::GetText(unsigned char** text, long& size) {
    *text = nullptr;
    size = 0;
    if (!fp || len <= 0) {
        return;
    }
    const auto bytes = static_cast<size_t>(len);
    auto* buffer = new (std::nothrow) unsigned char[bytes + 1];
    if (!buffer) {
        return;
    }
    // Through the virtual operations, so that a window gives its own part. A file that shrank since it was
    // opened gives what it still has.
    const size_t got = Seek(0, SEEK_SET) == 0 ? Read(buffer, 1, bytes) : 0;
    buffer[got] = 0;
    *text = buffer;
    size = static_cast<long>(got);
}

int file_t::Eof() {
    return fp ? std::feof(fp) : 1;
}

int file_t::Seek(long off, int whence) {
    return fp ? std::fseek(fp, off, whence) : -1;
}

long file_t::Tell() {
    return fp ? std::ftell(fp) : -1;
}

int file_t::Putc(int c) {
    return fp ? std::fputc(c, fp) : -1;
}

int file_t::Getc() {
    return fp ? std::fgetc(fp) : -1;
}

int file_t::Puts(const char* str) {
    return fp && str ? std::fputs(str, fp) : -1;
}

char* file_t::Gets(char* buf, int n) {
    return fp && n > 0 ? std::fgets(buf, n, fp) : nullptr;
}

size_t file_t::Read(void* buf, size_t size, size_t n) {
    return fp && isCount(n) ? std::fread(buf, size, n, fp) : 0;
}

size_t file_t::Write(const void* buf, size_t size, size_t n) {
    return fp ? std::fwrite(buf, size, n, fp) : 0;
}

bool file_t::IsLodEntry() {
    return fp == nullptr;
}

void file_t::SetFp(std::FILE*) {}

file_t* file_t::create_part(const char* partName, long partLen, long offset) {
    return new (std::nothrow) partof_file_t(partName, fp, partLen == -1 ? len : partLen, offset);
}

long file_t::WriteToFile(file_t* dst, long count) {
    long remaining = count < 0 ? long{len} - pos : count;
    long total = 0;
    char chunk[kCopyChunk];
    while (dst && remaining > 0) {
        const std::int32_t at = pos;
        // Through the virtual read, so that a window reads at its own place of the shared stream. A window's
        // read advances `pos` itself, a stream's does not.
        const size_t got = Read(chunk, 1, std::min(kCopyChunk, static_cast<size_t>(remaining)));
        if (got == 0) {
            break;
        }
        pos = to32(std::int64_t{at} + static_cast<std::int64_t>(got));
        const size_t written = dst->Write(chunk, 1, got);
        total += static_cast<long>(written);
        remaining -= static_cast<long>(got);
        if (written != got) {
            break;
        }
    }
    return total;
}

void* file_t::GetMemPtr() {
    return nullptr;
}

// The rule of memory files and windows: never beyond `len`.
int file_t::seekWithinLen(long off, int whence) {
    // What no content of 32 bits has a place for is refused before it is counted with.
    constexpr std::int64_t kFarthest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t distance = off;
    if (distance > kFarthest || distance < -kFarthest) {
        return -1;
    }
    std::int64_t target;
    switch (whence) {
        case SEEK_SET:
            target = off;
            break;
        case SEEK_CUR:
            target = std::int64_t{pos} + off;
            break;
        case SEEK_END:
            target = off <= 0 ? std::int64_t{len} + off : -1;
            break;
        default:
            return -1;
    }
    if (target < 0 || target > len) {
        return -1;
    }
    pos = static_cast<std::int32_t>(target);
    return 0;
}

partof_file_t::partof_file_t(const char* partName, std::FILE* stream, long length, long start)
    : file_t(partName, stream, length, 0), offset(to32(start)) {}

partof_file_t::~partof_file_t() {
    partof_file_t::Close();
}

void partof_file_t::Close() {
    fp = nullptr;
    file_t::Close();
}

int partof_file_t::Eof() {
    return pos < len ? 0 : len;
}

int partof_file_t::Seek(long off, int whence) {
    return seekWithinLen(off, whence);
}

long partof_file_t::Tell() {
    return pos;
}

// The stream is shared: every access starts by going to this window's own place.
bool partof_file_t::seekStream() {
    const std::int64_t at = std::int64_t{offset} + pos;
    return fp && pos < len && at >= 0 && at <= std::numeric_limits<std::int32_t>::max() &&
           std::fseek(fp, static_cast<long>(at), SEEK_SET) == 0;
}

void partof_file_t::takePosition() {
    pos = to32(std::int64_t{std::ftell(fp)} - offset);
}

int partof_file_t::Putc(int) {
    return 0;
}

int partof_file_t::Puts(const char*) {
    return 0;
}

size_t partof_file_t::Write(const void*, size_t, size_t) {
    return 0;
}

int partof_file_t::Getc() {
    if (!seekStream()) {
        return -1;
    }
    const int c = std::fgetc(fp);
    takePosition();
    return c;
}

char* partof_file_t::Gets(char* buf, int n) {
    if (n < 1 || !seekStream()) {
        return nullptr;
    }
    const std::int64_t most = std::int64_t{len} - pos + 1;
    char* line = std::fgets(buf, static_cast<int>(std::min<std::int64_t>(n, most)), fp);
    takePosition();
    return line;
}

size_t partof_file_t::Read(void* buf, size_t size, size_t n) {
    if (size == 0 || !isCount(n) || !seekStream()) {
        return 0;
    }
    const auto left = static_cast<size_t>(len - pos);
    const size_t items =
        n <= left / size ? std::fread(buf, size, n, fp) : std::fread(buf, 1, left, fp) / size;
    takePosition();
    return items;
}

bool partof_file_t::IsLodEntry() {
    return true;
}

file_t* partof_file_t::create_part(const char* partName, long partLen, long start) {
    const std::int32_t inStream = to32(std::int64_t{offset} + to32(start));
    return new (std::nothrow) partof_file_t(partName, fp, partLen == -1 ? len : partLen, inStream);
}
