#include "util/SafeWrite.h"

#include <chrono>
#include <cstdio>

#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr int kSiblingNames = 4;

SafeWriteResult failure(const std::string& what, const std::string& path, const std::string& reason) {
    return {what + " '" + path + "': " + reason};
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
    bool fill(std::string_view bytes) { return m_out->write(bytes) && m_out->flush() && m_out->close(); }
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
SafeWriteResult writeInPlace(OsFiles& files, const std::string& target, std::string_view bytes) {
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

}  // namespace

SafeWriteResult safeWrite(const std::string& path, std::string_view bytes) {
    OsFiles& files = osFiles();
    const auto target = files.resolveLinks(files.fullPath(path));
    if (!target) {
        return failure("Can't follow the link", path, files.lastError());
    }
    const bool exists = files.exists(*target);
    if (exists && !files.openForWriting(*target, OsOpen::Existing)) {
        return failure("Can't write", *target, files.lastError());
    }

    Sibling sibling(files, *target);
    if (!sibling.isMade()) {
        return exists ? writeInPlace(files, *target, bytes)
                      : failure("Can't make", *target, files.lastError());
    }
    if (!sibling.fill(bytes)) {
        return failure("Can't write", *target, files.lastError());
    }
    const bool placed =
        exists ? files.replaceFile(*target, sibling.path()) : files.renameNew(sibling.path(), *target);
    if (placed) {
        sibling.keep();
        return {};
    }
    const std::string reason = files.lastError();
    if (exists && !files.exists(*target)) {
        // The system took the old file away without putting the new one there: the sibling is all there is.
        sibling.keep();
        if (files.renameNew(sibling.path(), *target)) {
            return {};
        }
        return failure("Can't write", *target, reason + "; the new content is in '" + sibling.path() + "'");
    }
    return failure("Can't write", *target, reason);
}

}  // namespace zoka
