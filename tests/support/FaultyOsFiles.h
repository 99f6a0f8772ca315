// The real disk with faults: counts the operations and fails those that a rule names.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "util/OsFiles.h"
#include "util/SafeWrite.h"

namespace zoka::test {

// Installs itself as the disk for its lifetime, on which files may be written in place. A failing write leaves half of
// its bytes, a failing close closes.
class FaultyOsFiles : public OsFiles {
public:
    // `n` counts all operations from 1; `op` is the operation's name ("write" and the like for open files).
    using Path = const std::string&;
    using Rule = std::function<bool(int n, std::string_view op, Path path)>;

    explicit FaultyOsFiles(Rule fails) : m_fails(std::move(fails)) {
        setOsFiles(this);
        setInPlace(InPlace::Allowed);
    }
    ~FaultyOsFiles() override {
        setInPlace(InPlace::Ask);
        setOsFiles(nullptr);
    }

    static Rule nth(int failing) {
        return [failing](int n, std::string_view, Path) { return n == failing; };
    }
    static Rule never() { return nth(0); }
    static Rule every(std::string_view failing) {
        return [failing](int, std::string_view op, Path) { return op == failing; };
    }

    int operations() const { return m_count; }

    std::optional<OsEntry> search(Path p) override {
        return bad("search", p) ? std::nullopt : m_real.search(p);
    }
    std::vector<OsEntry> list(Path p, OsListing* left) override {
        if (!bad("list", p)) {
            return m_real.list(p, left);
        }
        if (left) {
            left->error = "injected fault";
        }
        return {};
    }
    bool readTime(Path p, FileTime* time) override { return !bad("readTime", p) && m_real.readTime(p, time); }
    bool setTimes(Path p, FileTime time) override { return !bad("setTimes", p) && m_real.setTimes(p, time); }
    std::string currentFolder() override { return bad("currentFolder", "") ? "" : m_real.currentFolder(); }
    bool setCurrentFolder(Path p) override {
        return !bad("setCurrentFolder", p) && m_real.setCurrentFolder(p);
    }
    std::string fullPath(Path p) override { return m_real.fullPath(p); }
    OsKind kindOf(Path p) override { return bad("kindOf", p) ? OsKind::Unknown : m_real.kindOf(p); }
    bool listFolder(Path p, std::vector<OsListed>& entries) override {
        return !bad("listFolder", p) && m_real.listFolder(p, entries);
    }
    bool makeFolders(Path p) override { return !bad("makeFolders", p) && m_real.makeFolders(p); }
    std::optional<OsEntry> copyNew(Path from, Path to) override {
        return bad("copyNew", to) ? std::nullopt : m_real.copyNew(from, to);
    }
    bool makeFolder(Path p) override { return !bad("makeFolder", p) && m_real.makeFolder(p); }
    bool deleteFile(Path p) override { return !bad("deleteFile", p) && m_real.deleteFile(p); }
    bool deleteFolder(Path p) override { return !bad("deleteFolder", p) && m_real.deleteFolder(p); }
    std::FILE* openStream(Path p, const char* mode) override {
        return bad("openStream", p) ? nullptr : m_real.openStream(p, mode);
    }
    std::optional<std::string> readWhole(Path p) override {
        return bad("readWhole", p) ? std::nullopt : m_real.readWhole(p);
    }
    std::optional<bool> holds(Path p, std::string_view bytes) override {
        return bad("readWhole", p) ? std::nullopt : m_real.holds(p, bytes);
    }
    std::unique_ptr<OsOutFile> openForWriting(Path p, OsOpen how) override {
        if (bad(how == OsOpen::New        ? "openNew"
                : how == OsOpen::Existing ? "openExisting"
                                          : "openTruncate",
                p)) {
            return nullptr;
        }
        auto file = m_real.openForWriting(p, how);
        return file ? std::make_unique<OutFile>(*this, p, std::move(file)) : nullptr;
    }
    std::unique_ptr<OsOutFile> openSibling(Path p, Path like) override {
        if (bad("openNew", p)) {
            return nullptr;
        }
        auto file = m_real.openSibling(p, like);
        return file ? std::make_unique<OutFile>(*this, p, std::move(file)) : nullptr;
    }
    void deleteAbandoned(Path p) override {
        if (!bad("deleteAbandoned", p)) {
            m_real.deleteAbandoned(p);
        }
    }
    std::unique_ptr<OsLock> tryLock(Path p, OsLockState& state) override {
        state = OsLockState::Impossible;
        return bad("tryLock", p) ? nullptr : m_real.tryLock(p, state);
    }
    bool isLink(Path p) override { return m_real.isLink(p); }
    std::optional<std::string> resolveLinks(Path p) override {
        return bad("resolveLinks", p) ? std::nullopt : m_real.resolveLinks(p);
    }
    bool replaceFile(Path target, Path replacement) override {
        return !bad("replaceFile", target) && m_real.replaceFile(target, replacement);
    }
    bool renameNew(Path from, Path to) override {
        return !bad("renameNew", to) && m_real.renameNew(from, to);
    }
    void flushFolder(Path p) override {
        if (!bad("flushFolder", p)) {
            m_real.flushFolder(p);
        }
    }
    std::string lastError() override { return m_injected ? "injected fault" : m_real.lastError(); }
    OsFault lastFault() override { return m_injected ? injectedFault : m_real.lastFault(); }

    // Why an operation failed that a rule names.
    OsFault injectedFault = OsFault::NoPermission;

private:
    class OutFile : public OsOutFile {
    public:
        OutFile(FaultyOsFiles& owner, std::string path, std::unique_ptr<OsOutFile> real)
            : m_owner(owner), m_path(std::move(path)), m_file(std::move(real)) {}
        bool write(std::string_view bytes) override {
            if (m_owner.bad("write", m_path)) {
                m_file->write(bytes.substr(0, bytes.size() / 2));
                return false;
            }
            return m_file->write(bytes);
        }
        bool rewind() override { return !m_owner.bad("rewind", m_path) && m_file->rewind(); }
        bool cutHere() override { return !m_owner.bad("cutHere", m_path) && m_file->cutHere(); }
        bool flush() override { return !m_owner.bad("flush", m_path) && m_file->flush(); }
        bool close() override {
            const bool closed = m_file->close();
            return !m_owner.bad("close", m_path) && closed;
        }

    private:
        FaultyOsFiles& m_owner;
        std::string m_path;
        std::unique_ptr<OsOutFile> m_file;
    };

    bool bad(std::string_view op, const std::string& path) {
        m_injected = m_fails(++m_count, op, path);
        return m_injected;
    }

    OsFiles& m_real = systemFiles();
    Rule m_fails;
    int m_count = 0;
    bool m_injected = false;
};

}  // namespace zoka::test
