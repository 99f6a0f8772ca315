#include "util/FileLock.h"

#include <atomic>
#include <map>
#include <memory>
#include <thread>

#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/UserPrompt.h"

namespace zoka {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kRetry{5};

struct Held {
    std::thread::id holder;
    int times = 0;
    std::unique_ptr<OsLock> lock;  // null where the folder takes no lock file
};

// The locks that this process holds. Looked at for moments alone, so spinning does.
class Registry {
public:
    enum class Result { Taken, TakenOver, Busy };

    Result take(const std::string& key, const std::string& lockFile) {
        const Spin guard(m_busy);
        const auto found = m_held.find(key);
        if (found != m_held.end()) {
            if (found->second.holder != std::this_thread::get_id()) {
                return Result::Busy;
            }
            ++found->second.times;
            return Result::Taken;
        }
        OsLockState state = OsLockState::Impossible;
        auto lock = osFiles().tryLock(lockFile, state);
        if (state == OsLockState::Held) {
            return Result::Busy;
        }
        m_held.emplace(key, Held{std::this_thread::get_id(), 1, std::move(lock)});
        return state == OsLockState::TakenOver ? Result::TakenOver : Result::Taken;
    }

    void release(const std::string& key) {
        const Spin guard(m_busy);
        const auto found = m_held.find(key);
        if (--found->second.times == 0) {
            m_held.erase(found);
        }
    }

private:
    class Spin {
    public:
        explicit Spin(std::atomic_flag& flag) : m_flag(flag) {
            while (m_flag.test_and_set(std::memory_order_acquire)) {
                std::this_thread::yield();
            }
        }
        ~Spin() { m_flag.clear(std::memory_order_release); }
        Spin(const Spin&) = delete;
        Spin& operator=(const Spin&) = delete;

    private:
        std::atomic_flag& m_flag;
    };

    std::atomic_flag m_busy;
    std::map<std::string, Held> m_held;
};

Registry& registry() {
    static Registry all;
    return all;
}

}  // namespace

FileLock::FileLock(const std::string& path, std::chrono::milliseconds patience) {
    const auto target = osFiles().resolveLinks(osFiles().fullPath(path));
    if (!target || fileNameOf(*target).empty()) {
        return;  // nothing that could be written either: whoever writes says why
    }
    std::string lockFile = joinPath(folderOf(*target), "~zk-" + std::string(fileNameOf(*target)) + ".lock");
    std::string key;
    for (const char c : *target) {
        key += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const auto end = Clock::now() + patience;
    Registry::Result result;
    while ((result = registry().take(key, lockFile)) == Registry::Result::Busy && Clock::now() < end) {
        std::this_thread::sleep_for(kRetry);
    }
    if (result == Registry::Result::Busy) {
        m_why = "Can't write '" + *target + "': another program is changing it at this moment";
        return;
    }
    m_key = std::move(key);
    if (result == Registry::Result::TakenOver) {
        m_takenOver.swap(lockFile);
    }
}

FileLock::~FileLock() {
    if (!m_key.empty()) {
        registry().release(m_key);
    }
    if (!m_takenOver.empty()) {
        keepInside([&] {
            userPrompt().tell("A program that is gone had left the lock '" + m_takenOver +
                              "' behind. It was removed.");
        });
    }
}

}  // namespace zoka
