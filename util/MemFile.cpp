// The memory half of the file_t family.
#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "util/File.h"

namespace {

constexpr std::int32_t kStep = 1024;
constexpr std::int32_t kMaxSize = std::numeric_limits<std::int32_t>::max();

unsigned char* allocate(size_t size) {
    return new (std::nothrow) unsigned char[size];
}

}  // namespace

// The real size behind an `alloc`: the next quarter step between two powers of two. A pure function of
// `alloc`, so it needs no field of its own in an object whose layout other modules know. At most a quarter of
// the block is unused, and a byte is moved about four times while a file grows.
size_t dmemfile_t::blockSize(std::int32_t alloc) {
    if (alloc <= kStep) {
        return static_cast<size_t>(alloc);
    }
    const auto size = static_cast<std::uint32_t>(alloc);
    const std::uint32_t quarter = std::bit_floor(size) / 4;
    return std::min((size + quarter - 1) / quarter * quarter, static_cast<std::uint32_t>(kMaxSize));
}

dmemfile_t::dmemfile_t() : mem(allocate(kStep)), alloc(mem ? kStep : 0) {}

dmemfile_t::dmemfile_t(unsigned char* memory, std::int32_t size) : mem(memory), alloc(size) {
    len = size;
}

dmemfile_t::~dmemfile_t() {
    dmemfile_t::Close();
    file_t::Close();  // the stream handed over with SetFp
}

void dmemfile_t::releaseMemory(bool owned) {
    if (owned) {
        delete[] mem;
    }
    mem = nullptr;
    alloc = 0;
    std::memset(name, 0, sizeof name);
    len = 0;
    pos = 0;
}

void dmemfile_t::Close() {
    releaseMemory(true);
}

bool dmemfile_t::OpenWrite(const char*) {
    return false;
}

bool dmemfile_t::OpenRead(const char* fileName) {
    // Opened before anything is closed: the name may be this object's own.
    file_t disk;
    const bool opened = disk.OpenRead(fileName);
    Close();
    if (!opened || disk.GetLen() == 0) {
        return false;
    }
    const auto size = static_cast<std::int32_t>(disk.GetLen());
    mem = allocate(blockSize(size));
    if (!mem || disk.Read(mem, 1, static_cast<size_t>(size)) != static_cast<size_t>(size)) {
        Close();
        return false;
    }
    alloc = size;
    len = size;
    std::memcpy(name, disk.GetName(), sizeof name);
    datum = *disk.GetDatum();
    return true;
}

void dmemfile_t::GetText(unsigned char** text, long& size) {
    *text = nullptr;
    size = 0;
    if (!mem || len == 0) {
        return;
    }
    const auto bytes = static_cast<size_t>(len);
    *text = allocate(bytes);
    if (*text) {
        std::memcpy(*text, mem, bytes);
        size = len;
        pos = len;
    }
}

int dmemfile_t::Eof() {
    return pos < len ? 0 : pos;
}

int dmemfile_t::Seek(long off, int whence) {
    return seekWithinLen(off, whence);
}

long dmemfile_t::Tell() {
    return pos;
}

bool dmemfile_t::append(const void* bytes, std::int32_t count, std::int32_t step) {
    if (count > kMaxSize - pos || step > kMaxSize - alloc) {
        return false;
    }
    const std::int32_t newAlloc = alloc + step;
    unsigned char* block = mem;
    if (blockSize(newAlloc) != blockSize(alloc)) {
        block = allocate(blockSize(newAlloc));
        if (!block) {
            return false;
        }
        if (mem) {
            std::memcpy(block, mem, static_cast<size_t>(len));
        }
    }
    // The bytes may come from this file's own memory, so the old block goes last.
    std::memmove(block + pos, bytes, static_cast<size_t>(count));
    if (block != mem) {
        delete[] mem;
    }
    mem = block;
    alloc = newAlloc;
    pos += count;
    len = std::max(len, pos);
    return true;
}

int dmemfile_t::Putc(int c) {
    const auto byte = static_cast<unsigned char>(c);
    return append(&byte, 1, pos == alloc ? kStep : 0) ? c : 0;
}

int dmemfile_t::Puts(const char* str) {
    return str && *str ? static_cast<int>(Write(str, std::strlen(str), 1)) : 0;
}

size_t dmemfile_t::Write(const void* buf, size_t size, size_t n) {
    constexpr auto kMost = static_cast<size_t>(kMaxSize);
    if (size == 0 || n == 0 || n > kMost / size) {
        return 0;
    }
    const auto count = static_cast<std::int32_t>(size * n);
    std::int32_t step = 0;
    if (count >= alloc - pos) {  // a write that ends exactly at `alloc` grows it too
        if (count > kMaxSize - 16) {
            return 0;
        }
        step = count <= kStep ? kStep : (count | 15) + 1;
    }
    return append(buf, count, step) ? n : 0;
}

int dmemfile_t::Getc() {
    return pos < len ? mem[pos++] : -1;
}

char* dmemfile_t::Gets(char* buf, int n) {
    if (n < 1 || pos >= len) {
        return nullptr;
    }
    int stored = 0;
    while (stored < n - 1 && pos < len) {
        const unsigned char c = mem[pos++];
        buf[stored++] = static_cast<char>(c);
        if (c == '\n' || c == '\r') {
            const unsigned char partner = c == '\n' ? '\r' : '\n';
            if (pos < len && mem[pos] == partner) {
                buf[stored++] = static_cast<char>(partner);
                ++pos;
            }
            break;
        }
    }
    buf[stored] = 0;
    return stored > 0 ? buf : nullptr;
}

size_t dmemfile_t::Read(void* buf, size_t size, size_t n) {
    if (!isCount(n)) {
        return 0;
    }
    if (size == 0) {
        return n;  // any number of empty items fits
    }
    const auto left = static_cast<size_t>(len - pos);
    const bool all = n <= left / size;
    const size_t bytes = all ? n * size : left;
    if (bytes > 0) {
        std::memcpy(buf, mem + pos, bytes);
    }
    pos += static_cast<std::int32_t>(bytes);
    return all ? n : left / size;
}

bool dmemfile_t::IsLodEntry() {
    return false;
}

void dmemfile_t::SetFp(std::FILE* stream) {
    fp = stream;
}

file_t* dmemfile_t::create_part(const char* partName, long partLen, long offset) {
    const std::int64_t size = partLen == -1 ? len : partLen;
    if (size < 0 || offset < 0 || offset > len || size > len - offset) {
        return nullptr;
    }
    return new (std::nothrow)
        smemfile_t(partName, mem ? mem + offset : nullptr, static_cast<long>(size), true);
}

long dmemfile_t::WriteToFile(file_t* dst, long count) {
    // Never past the data, whatever the caller counts on.
    const long rest = long{len} - pos;
    const long bytes = count < 0 ? rest : std::min(count, rest);
    if (bytes <= 0 || !dst) {
        return 0;
    }
    const std::int32_t at = pos;
    pos += static_cast<std::int32_t>(bytes);
    return dst->Write(mem + at, static_cast<size_t>(bytes), 1) == 1 ? bytes : 0;
}

void* dmemfile_t::GetMemPtr() {
    return mem;
}

smemfile_t::smemfile_t(long size) : dmemfile_t(nullptr, 0), is_static(false) {
    if (size > 0 && size <= kMaxSize) {
        mem = new (std::nothrow) unsigned char[static_cast<size_t>(size)]();
        alloc = mem ? static_cast<std::int32_t>(size) : 0;
        len = alloc;
    }
}

smemfile_t::smemfile_t(const char* fileName, unsigned char* memory, long size, bool isStatic)
    : dmemfile_t(nullptr, 0), is_static(isStatic) {
    if (memory && size > 0 && size <= kMaxSize) {
        mem = memory;
        alloc = static_cast<std::int32_t>(size);
        len = alloc;
        setName(fileName, 256);
    }
}

smemfile_t::~smemfile_t() {
    smemfile_t::Close();
}

void smemfile_t::Close() {
    releaseMemory(!is_static);
    is_static = false;  // a file opened into this object later is its own
}

int smemfile_t::Putc(int) {
    return 0;
}

int smemfile_t::Puts(const char*) {
    return 0;
}

size_t smemfile_t::Write(const void*, size_t, size_t) {
    return 0;
}
