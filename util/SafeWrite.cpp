#include "util/SafeWrite.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <list>
#include <mutex>
#include <new>
#include <set>

#include "util/FileLock.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/UserPrompt.h"

namespace zoka {
namespace {

constexpr int kSiblingNames = 4;
constexpr std::uint64_t kTicksPerDay = 24ull * 60 * 60 * 10'000'000;
constexpr std::uint64_t kTicksFrom1601To1970 = 11'644'473'600ull * 10'000'000;

std::atomic<InPlace> g_inPlace{InPlace::Ask};

std::string failure(const std::string& what, const std::string& path, const std::string& reason) {
    return what + " '" + path + "': " + reason;
}

// Removes what programs that were killed left in the folder more than a day ago. Once for a folder that is
// written again and again.
void clearAbandoned(OsFiles& files, const std::string& folder) {
    static std::mutex lock;
    static std::string lastCleared;
    const std::lock_guard guard(lock);
    if (folder == lastCleared) {
        return;
    }
    lastCleared = folder;
    const auto sinceUnix = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceUnix).count();
    const std::uint64_t now = kTicksFrom1601To1970 + static_cast<std::uint64_t>(seconds) * 10'000'000;
    for (const char* pattern : {"~zk????????.tmp", "~zk-*.lock"}) {
        for (const OsEntry& entry : files.list(joinPath(folder, pattern))) {
            if (!entry.isFolder && entry.lastWrite.ticks() + kTicksPerDay < now) {
                files.deleteAbandoned(joinPath(folder, entry.name));
            }
        }
    }
}

// A file of our own beside the target; deleted again unless it took the target's place.
class Sibling {
public:
    // `like` gives it its mode and access rights; empty: those of any new file.
    Sibling(OsFiles& files, const std::string& target, const std::string& like) : m_files(files) {
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        for (int i = 0; i < kSiblingNames && !m_out; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "~zk%08x.tmp", static_cast<unsigned>(ticks + i));
            m_path = joinPath(folderOf(target), name);
            m_out = m_files.openSibling(m_path, like);
        }
        m_ours = m_out != nullptr;
    }
    Sibling(const Sibling&) = delete;
    Sibling& operator=(const Sibling&) = delete;
    ~Sibling() {
        m_out.reset();
        if (m_ours) {
            try {
                m_files.deleteFile(m_path);
            } catch (const std::bad_alloc&) {
                // It goes when it is a day old.
            }
        }
    }

    bool isMade() const { return m_ours; }
    const std::string& path() const { return m_path; }
    bool write(std::string_view bytes, bool flushed) {
        if (!m_out->write(bytes)) {
            return false;
        }
        if (flushed) {
            m_out->startFlush();  // while the next sibling is made
        }
        return true;
    }
    bool finish(bool flushed) { return (!flushed || m_out->flush()) && m_out->close(); }
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
    return failure("Can't write", target, "the old content could not be put back: " + reason);
}

bool mayWriteInPlace(const std::string& target, const std::string& reason) {
    const InPlace choice = g_inPlace.load();
    return choice == InPlace::Allowed ||
           (choice == InPlace::Ask &&
            userPrompt().ask("The folder of '" + target + "' takes no new file (" + reason +
                                 "), so the file can't be replaced in one step.\n\nWrite it in place? If the "
                                 "computer stops in the middle of it, the file is damaged.",
                             "ZOKA", PromptButtons::YesNo, PromptIcon::Warning) == PromptAnswer::Yes);
}

// One file on its way. Each step returns what went wrong, or nothing.
class PendingFile {
public:
    // `settled` are the folders for which writing in place was allowed already.
    PendingFile(OsFiles& files, const FileContent& content, std::set<std::string>& settled)
        : m_files(files), m_content(content) {
        m_fault = prepare(settled);
    }

    const std::string& fault() const { return m_fault; }
    const std::string& target() const { return m_target; }
    bool isFlushed() const { return m_content.flushed; }

    std::string flush() {
        return !m_sibling->isMade() || m_sibling->finish(m_content.flushed)
                   ? ""
                   : failure("Can't write", m_target, m_files.lastError());
    }

    // Whether the file is still the one that was read.
    bool isAsExpected() const {
        if (!m_content.expected) {
            return true;
        }
        // A file that is there and can't be read may hold another's work; one that isn't was read as empty.
        const auto holds = m_files.holds(m_target, *m_content.expected);
        return holds ? *holds : m_content.expected->empty() && !m_files.exists(m_target);
    }

    std::string place() {
        if (!m_sibling->isMade()) {
            return writeInPlace(m_files, m_target, bytes());
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
                           "the new content is in '" + m_sibling->path() + "': " + reason);
        }
        return failure("Can't write", m_target, reason);
    }

private:
    std::string_view bytes() const { return m_content.made ? m_made : m_content.bytes; }

    std::string prepare(std::set<std::string>& settled) {
        if (m_content.made) {
            m_made = m_content.made();
        }
        const std::string path = m_files.fullPath(m_content.path);
        if (m_content.kind == FileKind::Generated && m_files.isLink(path)) {
            return failure("Can't write", path, "a link stands in its place");
        }
        const auto target = m_files.resolveLinks(path);
        if (!target) {
            return failure("Can't follow the link", m_content.path, m_files.lastError());
        }
        m_target = *target;
        if (m_content.expected) {
            m_lock.emplace(m_target);
            if (!*m_lock) {
                return m_lock->why();
            }
        }
        m_exists = m_files.exists(m_target);
        if (m_exists && !m_files.openForWriting(m_target, OsOpen::Existing)) {
            return failure("Can't write", m_target, m_files.lastError());
        }
        const std::string folder(folderOf(m_target));
        clearAbandoned(m_files, folder);
        m_sibling.emplace(m_files, m_target, m_exists ? m_target : m_content.like);
        if (m_sibling->isMade()) {
            return m_sibling->write(bytes(), m_content.flushed)
                       ? ""
                       : failure("Can't write", m_target, m_files.lastError());
        }
        const std::string reason = m_files.lastError();
        if (!m_exists) {
            return failure("Can't make", m_target, reason);
        }
        if (m_files.lastFault() != OsFault::NoPermission) {
            return failure("Can't write", m_target, reason);
        }
        if (!settled.contains(folder) && !mayWriteInPlace(m_target, reason)) {
            return failure("Can't write", m_target,
                           "its folder takes no new file (" + reason + "), and it was not written in place");
        }
        settled.insert(folder);
        return {};
    }

    OsFiles& m_files;
    const FileContent& m_content;
    std::string m_made;
    std::string m_target;
    std::optional<FileLock> m_lock;
    bool m_exists = false;
    std::optional<Sibling> m_sibling;
    std::string m_fault;
};

}  // namespace

SafeWriteResult safeWrite(std::span<const FileContent> files) {
    OsFiles& disk = osFiles();
    Outcome outcome;
    std::list<PendingFile> pending;
    std::set<std::string> settled;
    for (const FileContent& file : files) {
        pending.emplace_back(disk, file, settled);
        if (outcome = Outcome::unless(pending.back().fault()); !outcome) {
            pending.pop_back();
            break;
        }
    }
    // A fault further in front is the one that counts.
    auto end = pending.begin();
    for (; end != pending.end(); ++end) {
        if (Outcome flushed = Outcome::unless(end->flush()); !flushed) {
            outcome = std::move(flushed);
            break;
        }
    }
    for (auto file = pending.begin(); file != end; ++file) {
        if (!file->isAsExpected()) {
            return {Refusal{failure("Can't write", file->target(),
                                    "it was changed on the disk meanwhile; its content was left alone")},
                    0, true};
        }
    }
    size_t written = 0;
    std::set<std::string> folders;
    for (auto file = pending.begin(); file != end; ++file) {
        if (Outcome placed = Outcome::unless(file->place()); !placed) {
            outcome = std::move(placed);
            break;
        }
        if (file->isFlushed()) {
            folders.insert(std::string(folderOf(file->target())));
        }
        ++written;
    }
    for (const std::string& folder : folders) {
        disk.flushFolder(folder);
    }
    return {std::move(outcome), written, false};
}

SafeWriteResult safeWrite(const std::string& path, std::string_view bytes, FileKind kind) {
    const FileContent file = {path, bytes, kind};
    return safeWrite({&file, 1});
}

void setInPlace(InPlace choice) {
    g_inPlace.store(choice);
}

}  // namespace zoka
