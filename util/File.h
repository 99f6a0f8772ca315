// One file interface over disk files, windows onto them, growing memory and fixed memory. Exported for other modules
// of the suite that are made with the same compiler: the order of the virtual operations stays, but how a call is made,
// what a string is and where the destructor's slot lies are the compiler's own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "util/Export.h"
#include "util/FileTime.h"

// What FileExist fills in.
struct fileinfo_t {
    char name[260];  // absolute, 0-terminated
    zoka::FileTime lastWrite;
    std::uint32_t sizeHigh;
    std::uint32_t sizeLow;
};

// A stdio stream opened by name. No operation throws: failures are false, null, 0 or -1. Without an open
// stream reads find the end and writes write nothing. Positions and lengths are 32-bit; a longer disk file
// can't be opened for reading. An object is used by one thread at a time.
//
// Copies share the stream and the buffer: only one of them may be closed or destroyed.
class ZOKA_API file_t {
public:
    file_t();
    // Takes the stream over: Close or the destructor closes it. The last argument is ignored.
    file_t(const char* name, std::FILE* fp, long len, long);
    file_t(const file_t&) = default;
    file_t& operator=(const file_t&) = default;

    virtual ~file_t();

    // Both close first, and leave the object closed when they fail. OpenWrite empties an existing file.
    virtual bool OpenWrite(const char* name);
    virtual bool OpenRead(const char* name);
    virtual void Close();
    // The whole content from the start in a new buffer, which the caller frees with delete[]. A stream's text
    // has a 0 behind its `size` bytes, a memory file's has not. Nothing to give: null and 0.
    virtual void GetText(unsigned char** text, long& size);
    // Not 0 at the end: the stream's indicator (set by a read that failed), for memory the position and for
    // windows the length. An empty memory file or window therefore never reports its end.
    virtual int Eof();
    // As fseek and ftell. In memory and windows a target outside 0..len fails and moves nothing.
    virtual int Seek(long off, int whence);
    virtual long Tell();
    virtual int Putc(int c);
    virtual int Getc();
    virtual int Puts(const char* str);
    // A line with its end, 0-terminated; null at the end. From memory CR LF and LF CR are line ends of two
    // bytes, and such an end is completed past n - 1: the buffer must hold n + 1 bytes there.
    virtual char* Gets(char* buf, int n);
    // Whole items read or written; a count below 1 reads nothing. At the end a last, broken item's bytes come too.
    virtual size_t Read(void* buf, size_t size, size_t n);
    virtual size_t Write(const void* buf, size_t size, size_t n);
    // True for what lies inside another file (and for a stream that isn't open).
    virtual bool IsLodEntry();
    // Memory files keep the stream and close it when they are destroyed; others ignore it.
    virtual void SetFp(std::FILE* stream);
    // A view of `partLen` bytes (-1: this file's length) at `offset`, to be deleted by the caller and used
    // only while this file stays open and, for memory, isn't written to. A memory view outside the data is
    // null; one of a stream isn't checked. A view made from a view counts its offset from that one's start.
    virtual file_t* create_part(const char* partName, long partLen, long offset);
    // Copies `count` bytes (negative: the rest) from the current position; the bytes written.
    virtual long WriteToFile(file_t* dst, long count);
    // The memory behind a memory file, null for others. It stays the file's: valid until the next write,
    // Close or the end of the file, and never freed by the caller.
    virtual void* GetMemPtr();

    long GetLen() const { return len; }
    const char* GetName() const { return name; }
    // Last-write time as of OpenRead.
    const zoka::FileTime* GetDatum() const { return &datum; }

    // Paths: backslashes and drive letters, on every system.
    // "x:..." as it is; "\x" gets the current drive; anything else the current folder in front. For
    // each leading "..\" that folder loses a part, while the name keeps them all; with no part left the
    // name comes back unchanged.
    static std::string AbsPath(const char* name);
    // Finds a folder by search. Neither "." nor a path that ends so or with a separator is one.
    static bool DirExist(const char* path);
    // Makes the folder and those above it; failures show only in DirExist.
    static void MakeDir(const char* path);
    // `info` may be null.
    static bool FileExist(const char* name, fileinfo_t* info);
    // False when the file can't be opened for reading. `time` may be null.
    static bool get_file_time(const char* name, zoka::FileTime* time);
    // Sets creation, last-access and last-write time. False when the file can't be opened for writing.
    static bool set_file_time(const char* name, const zoka::FileTime* time);
    // "dd.mm.yyyy  hh:mm" (two blanks), of the time as it is (UTC). Times outside 1980..2107 give the
    // first moment of 1980.
    static std::string ConvertFileTime(const zoka::FileTime* time);

protected:
    void setName(const char* newName, size_t maxChars);
    int seekWithinLen(long off, int whence);
    // A count of items; other modules count in int, and one below 0 arrives as a very large one.
    static bool isCount(size_t n) { return static_cast<std::ptrdiff_t>(n) > 0; }

    char name[260];
    std::FILE* fp;
    std::int32_t len;
    std::int32_t pos;  // memory and windows; a stream advances it in WriteToFile alone
    zoka::FileTime datum;
};

// A window onto a stream that belongs to another file_t, which must stay open. Read-only.
class ZOKA_API partof_file_t : public file_t {
public:
    partof_file_t(const char* name, std::FILE* fp, long len, long offset);
    partof_file_t(const partof_file_t&) = default;
    partof_file_t& operator=(const partof_file_t&) = default;
    ~partof_file_t() override;

    void Close() override;  // forgets the stream
    int Eof() override;
    int Seek(long off, int whence) override;
    long Tell() override;
    int Putc(int c) override;
    int Getc() override;
    int Puts(const char* str) override;
    char* Gets(char* buf, int n) override;
    size_t Read(void* buf, size_t size, size_t n) override;
    size_t Write(const void* buf, size_t size, size_t n) override;
    bool IsLodEntry() override;
    file_t* create_part(const char* partName, long partLen, long start) override;

private:
    bool seekStream();
    void takePosition();

    std::int32_t offset;
};

// A memory buffer that grows on writing. OpenRead reads a whole, non-empty disk file
// into it; OpenWrite fails.
class ZOKA_API dmemfile_t : public file_t {
public:
    dmemfile_t();
    dmemfile_t(const dmemfile_t&) = default;
    dmemfile_t& operator=(const dmemfile_t&) = default;
    ~dmemfile_t() override;

    bool OpenWrite(const char* name) override;
    bool OpenRead(const char* name) override;
    void Close() override;
    void GetText(unsigned char** text, long& size) override;
    int Eof() override;
    int Seek(long off, int whence) override;
    long Tell() override;
    int Putc(int c) override;
    int Getc() override;
    int Puts(const char* str) override;
    char* Gets(char* buf, int n) override;
    size_t Read(void* buf, size_t size, size_t n) override;
    size_t Write(const void* buf, size_t size, size_t n) override;
    bool IsLodEntry() override;
    void SetFp(std::FILE* stream) override;
    file_t* create_part(const char* partName, long partLen, long offset) override;
    long WriteToFile(file_t* dst, long count) override;
    void* GetMemPtr() override;

protected:
    void releaseMemory(bool owned);

    unsigned char* mem;
    // The size by the growth steps (1024 for small writes, the rounded write for large ones). The
    // block behind `mem` is larger, always blockSize(alloc) bytes in a file that grows, so that many
    // small writes stay linear.
    std::int32_t alloc;

private:
    friend class smemfile_t;
    friend struct dmemfile_peek;  // tests
    dmemfile_t(unsigned char* mem, std::int32_t size);
    static size_t blockSize(std::int32_t alloc);
    // Raises `alloc` by `step` and stores `bytes` at `pos`; false, with nothing
    // changed, when there's no memory.
    bool append(const void* bytes, std::int32_t count, std::int32_t step);
};

// A fixed, read-only memory block.
class ZOKA_API smemfile_t : public dmemfile_t {
public:
    // `size` zero bytes of its own.
    explicit smemfile_t(long size = 0);
    // The caller's block. `is_static`: it stays the caller's and must outlive this file; otherwise it is
    // taken over and freed with delete[].
    smemfile_t(const char* name, unsigned char* mem, long size, bool is_static);
    smemfile_t(const smemfile_t&) = default;
    smemfile_t& operator=(const smemfile_t&) = default;
    ~smemfile_t() override;

    void Close() override;
    int Putc(int c) override;
    int Puts(const char* str) override;
    size_t Write(const void* buf, size_t size, size_t n) override;

private:
    bool is_static;
};
