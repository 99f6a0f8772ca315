#include "util/SafeWrite.h"

#include <chrono>
#include <cstdio>
#include <list>
#include <optional>
#include <set>

#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr int kSiblingNames = 4;

std::string failure(const std::string& what, const std::string& path, const std::string& reason) {
    return what + " '" + path + "': " + reason;
}

// A file of our own beside the target; deleted again unless it took the target's place.
class Sibling {
public:
    Sibling(OsFiles& files, const std::string& target) : m_files(files) {
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        for (int i = 0; i < kSiblingNames && !m_out; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "~zk%08x.tmp", static_cast<unsigned>(ticks + i));
            m_path = joinPath(folderOf(target), name);
            m_out = m_files.openForWriting(m_path, OsOpen::New);
        }
        m_ours = m_out != nullptr;
    }
    Sibling(const Sibling&) = delete;
    Sibling& operator=(const Sibling&) = delete;
    ~Sibling() {
        m_out.reset();
        if (m_ours) {
            m_files.deleteFile(m_path);
        }
    }

    bool isMade() const { return m_ours; }
    const std::string& path() const { return m_path; }
    bool write(std::string_view bytes) { return m_out->write(bytes); }
    bool finish() { return m_out->flush() && m_out->close(); }
    void keep() { m_ours = false; }

private:
    OsFiles& m_files;
    std::string m_path;
    std::unique_ptr<OsOutFile> m_out;
    bool m_ours = false;
};

bool overwrite(OsOutFile& out, std::string_view bytes) {
    return out.rewind() && out.write(bytes) && out.cutHere() && out.flush();
}

// For folders that take no new file. The file is not emptied first: what it occupies stays its own, so that
// the old content fits back when the disk has no room for the new one.
std::string writeInPlace(OsFiles& files, const std::string& target, std::string_view bytes) {
    const auto old = files.readWhole(target);
    if (!old) {
        return failure("Can't read", target, files.lastError());
    }
    auto out = files.openForWriting(target, OsOpen::Existing);
    if (!out) {
        return failure("Can't write", target, files.lastError());
    }
    if (overwrite(*out, bytes) && out->close()) {
        return {};
    }
    const std::string reason = files.lastError();
    out.reset();
    if (const auto again = files.openForWriting(target, OsOpen::Existing); again && overwrite(*again, *old)) {
        return failure("Can't write", target, reason);
    }
    return failure("Can't write", target, reason + "; the old content could not be put back");
}

// One file on its way. Each step returns what went wrong, or nothing.
class PendingFile {
public:
    PendingFile(OsFiles& files, const FileContent& content) : m_files(files), m_bytes(content.bytes) {
        const auto target = files.resolveLinks(files.fullPath(content.path));
        if (!target) {
            m_fault = failure("Can't follow the link", content.path, files.lastError());
            return;
        }
        m_target = *target;
        m_exists = files.exists(m_target);
        if (m_exists && !files.openForWriting(m_target, OsOpen::Existing)) {
            m_fault = failure("Can't write", m_target, files.lastError());
            return;
        }
        m_sibling.emplace(files, m_target);
        if (m_sibling->isMade()) {
            m_fault = m_sibling->write(m_bytes) ? "" : failure("Can't write", m_target, files.lastError());
        } else if (!m_exists) {
            m_fault = failure("Can't make", m_target, files.lastError());
        }
    }

    const std::string& fault() const { return m_fault; }
    const std::string& target() const { return m_target; }

    std::string flush() {
        return !m_sibling->isMade() || m_sibling->finish()
                   ? ""
                   : failure("Can't write", m_target, m_files.lastError());
    }

    std::string place() {
        if (!m_sibling->isMade()) {
            return writeInPlace(m_files, m_target, m_bytes);
        }
        if (m_exists ? m_files.replaceFile(m_target, m_sibling->path())
                     : m_files.renameNew(m_sibling->path(), m_target)) {
            m_sibling->keep();
            return {};
        }
        const std::string reason = m_files.lastError();
        if (m_exists && !m_files.exists(m_target)) {
            // The system took the old file away without putting the new one there: the sibling is all there is.
            m_sibling->keep();
            if (m_files.renameNew(m_sibling->path(), m_target)) {
                return {};
            }
            return failure("Can't write", m_target,
                           reason + "; the new content is in '" + m_sibling->path() + "'");
        }
        return failure("Can't write", m_target, reason);
    }

private:
    OsFiles& m_files;
    std::string_view m_bytes;
    std::string m_target;
    bool m_exists = false;
    std::optional<Sibling> m_sibling;
    std::string m_fault;
};

}  // namespace

SafeWriteResult safeWrite(std::span<const FileContent> files) {
    OsFiles& disk = osFiles();
    SafeWriteResult result;
    std::list<PendingFile> pending;
    for (const FileContent& file : files) {
        pending.emplace_back(disk, file);
        if (result.error = pending.back().fault(); !result.error.empty()) {
            pending.pop_back();
            break;
        }
    }
    // A fault further in front is the one that counts.
    auto end = pending.begin();
    for (std::string fault; end != pending.end(); ++end) {
        if (fault = end->flush(); !fault.empty()) {
            result.error = fault;
            break;
        }
    }
    std::set<std::string> folders;
    for (auto file = pending.begin(); file != end; ++file) {
        if (const std::string fault = file->place(); !fault.empty()) {
            result.error = fault;
            break;
        }
        folders.insert(std::string(folderOf(file->target())));
        ++result.written;
    }
    for (const std::string& folder : folders) {
        disk.flushFolder(folder);
    }
    return result;
}

SafeWriteResult safeWrite(const std::string& path, std::string_view bytes) {
    const FileContent file = {path, bytes};
    return safeWrite({&file, 1});
}

}  // namespace zoka
