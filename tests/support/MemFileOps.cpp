#include "tests/support/MemFileOps.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace zoka::test {
namespace {

constexpr size_t kMostBytes = 1 << 20;  // of one run, so that a hostile string of operations ends

// The memory file's rules, byte by byte.
struct Model {
    std::string data;
    long pos = 0;
    long alloc = 1024;

    long size() const { return static_cast<long>(data.size()); }
    void put(char c) {
        if (pos == size()) {
            data += c;
        } else {
            data[static_cast<size_t>(pos)] = c;
        }
        ++pos;
    }
    void write(const std::string& bytes) {
        const long count = static_cast<long>(bytes.size());
        if (count > 0 && pos + count >= alloc) {
            alloc += count <= 1024 ? 1024 : (count | 15) + 1;
        }
        for (const char c : bytes) {
            put(c);
        }
    }
    void putc(char c) {
        alloc += pos == alloc ? 1024 : 0;
        put(c);
    }
    bool seek(long off, int whence) {
        if (whence < 0 || whence > 2 || (whence == 2 && off > 0)) {
            return false;
        }
        const long target = off + (whence == 0 ? 0 : whence == 1 ? pos : size());
        if (target < 0 || target > size()) {
            return false;
        }
        pos = target;
        return true;
    }
    std::string take(long count) {
        const std::string part = data.substr(static_cast<size_t>(pos), static_cast<size_t>(count));
        pos += static_cast<long>(part.size());
        return part;
    }
    std::string line(long n) {
        std::string text;
        while (static_cast<long>(text.size()) < n - 1 && pos < size()) {
            const std::string c = take(1);
            text += c;
            if (c == "\n" || c == "\r") {
                if (pos < size() && data[static_cast<size_t>(pos)] == (c == "\n" ? '\r' : '\n')) {
                    text += take(1);
                }
                break;
            }
        }
        return text;
    }
};

class Input {
public:
    Input(const std::uint8_t* data, size_t size) : m_data(data), m_left(size) {}
    bool empty() const { return m_left == 0; }
    std::uint8_t byte() {
        if (m_left == 0) {
            return 0;
        }
        --m_left;
        return *m_data++;
    }
    long number() { return byte() | byte() << 8; }

private:
    const std::uint8_t* m_data;
    size_t m_left;
};

class Run {
public:
    std::string operations(Input in) {
        size_t spent = 0;
        while (!in.empty() && spent < kMostBytes) {
            const std::uint8_t op = in.byte() % 12;
            const long number = in.number();
            spent += 16 + bytes(number);
            step(op, number, in);
            compare("length", m_file.GetLen(), m_model.size());
            compare("position", m_file.Tell(), m_model.pos);
            compare("alloc", dmemfile_peek::alloc(m_file), m_model.alloc);
            compare("end", m_file.Eof(), m_model.pos < m_model.size() ? 0 : m_model.pos);
            if (!m_report.empty()) {
                return "operation " + std::to_string(op) + " with " + std::to_string(number) + ": " +
                       m_report;
            }
        }
        compareContent();
        return m_report;
    }

private:
    void step(std::uint8_t op, long number, Input& in) {
        switch (op) {
            case 0:
                compare("Putc", m_file.Putc(static_cast<int>(number)), number);
                m_model.putc(static_cast<char>(number));
                break;
            case 1:
            case 2:
                write(number % (op == 1 ? 40 : 3000), 1 + in.byte() % 3);
                break;
            case 3: {
                const std::string text(bytes(number % 50), "a\rb\nc"[number % 5]);
                compare("Puts", m_file.Puts(text.c_str()), text.empty() ? 0 : 1);
                m_model.write(text);
                break;
            }
            case 4:
                read(number % 2000, in.byte() % 9);
                break;
            case 5:
                line(number % 60);
                break;
            case 6:
                compare("Getc", m_file.Getc(), nextByte());
                break;
            case 7: {
                const int whence = in.byte() % 5 - 1;
                const long off = in.byte() & 1 ? number : -number;
                compare("Seek", m_file.Seek(off, whence), m_model.seek(off, whence) ? 0 : -1);
                break;
            }
            case 8:
                compareContent();
                break;
            case 9:
                part(number, in.number());
                break;
            case 10:
                copy(in.byte() & 1 ? -1 : number);
                break;
            default:
                if (number % 16 == 0) {
                    m_file.Close();
                    m_model = {"", 0, 0};
                }
        }
    }

    void write(long size, long n) {
        std::string written;
        for (long i = 0; i < size * n; ++i) {
            written += "\r\nxyz0"[m_seed++ * 7 % 11 % 6];
        }
        const long done = size > 0 ? n : 0;
        compare("Write", number(m_file.Write(written.data(), bytes(size), bytes(n))), done);
        m_model.write(written);
    }

    void read(long n, long size) {
        // Exactly as large as asked for, so that the sanitizer sees a byte too many.
        std::vector<char> buffer(bytes(n * size));
        const long got = number(m_file.Read(buffer.data(), bytes(size), bytes(n)));
        const std::string expected = m_model.take(n * size);
        compare("Read", got, size > 0 ? static_cast<long>(expected.size()) / size : n);
        compareText("Read", std::string(buffer.data(), expected.size()), expected);
    }

    void line(long n) {
        std::vector<char> buffer(bytes(n + 1));
        const char* text = m_file.Gets(buffer.data(), static_cast<int>(n));
        const std::string expected = m_model.line(n);
        compare("Gets", text != nullptr, !expected.empty());
        if (text) {
            compareText("Gets", std::string(text, expected.size()), expected);
            compare("terminator", text[expected.size()], 0);
        }
    }

    void part(long offset, long size) {
        const std::unique_ptr<file_t> view(m_file.create_part("part", size, offset));
        const bool fits = offset + size <= m_model.size();
        compare("create_part", view != nullptr, fits);
        if (view && fits) {
            std::vector<char> buffer(bytes(size) + 1);
            compare("part read", number(view->Read(buffer.data(), 1, bytes(size))), size);
            compareText("part", std::string(buffer.data(), bytes(size)),
                        m_model.data.substr(bytes(offset), bytes(size)));
        }
    }

    void copy(long count) {
        dmemfile_t target;
        const long rest = m_model.size() - m_model.pos;
        const std::string expected = m_model.take(count < 0 ? rest : std::min(count, rest));
        compare("WriteToFile", m_file.WriteToFile(&target, count), static_cast<long>(expected.size()));
        compareText("copy", std::string(static_cast<const char*>(target.GetMemPtr()), expected.size()),
                    expected);
    }

    void compareContent() {
        unsigned char* text;
        long size;
        m_file.GetText(&text, size);
        const std::unique_ptr<unsigned char[]> owner(text);
        m_model.pos = text ? m_model.size() : m_model.pos;
        compareText("content", std::string(reinterpret_cast<const char*>(text), bytes(size)), m_model.data);
    }

    long nextByte() {
        const std::string c = m_model.take(1);
        return c.empty() ? -1 : static_cast<unsigned char>(c[0]);
    }

    static long number(size_t value) { return static_cast<long>(value); }
    static size_t bytes(long value) { return static_cast<size_t>(value); }

    void compare(const char* what, long got, long expected) {
        if (got != expected && m_report.empty()) {
            m_report = std::string(what) + " is " + std::to_string(got) + ", not " + std::to_string(expected);
        }
    }
    void compareText(const char* what, const std::string& got, const std::string& expected) {
        if (got != expected && m_report.empty()) {
            m_report = std::string(what) + " differs";
        }
    }

    dmemfile_t m_file;
    Model m_model;
    unsigned m_seed = 0;
    std::string m_report;
};

}  // namespace

std::string runMemFileOps(const std::uint8_t* data, size_t size) {
    return Run().operations(Input(data, size));
}

}  // namespace zoka::test
