#include "plugin/host/HostAdapter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "plugin/host/HostCall.h"

namespace zoka {
namespace {

using Word = std::int32_t;
using Byte = unsigned char;

// A text that the host fills.
template <size_t Size>
class HostBuffer {
public:
    HostBuffer() = default;
    // Holds `text` for the host to read, or to change; what doesn't fit is cut off.
    explicit HostBuffer(const std::string& text) {
        std::memcpy(data(), text.data(), std::min(text.size(), Size - 1));
    }
    char* data() { return m_bytes.data(); }
    static constexpr Word size() { return static_cast<Word>(Size); }
    std::string text() {
        m_bytes[Size - 1] = '\0';
        return m_bytes.data();
    }

private:
    std::array<char, Size> m_bytes{};
};
using PathBuffer = HostBuffer<kHostPathSize>;

// The host takes paths in buffers of one size. A file named by a path that was cut would be another file.
bool fits(const std::string& path) {
    return path.size() < kHostPathSize;
}

// A path that the host answered with success; an empty one is none.
std::optional<std::string> answered(Word result, std::string text) {
    if (result == 0 || text.empty()) {
        return std::nullopt;
    }
    return text;
}

}  // namespace

template <class Result, class... Args>
Result HostAdapter::call(HostSlot slot, Args... args) {
// The members belong to a class that we don't have, so they are called through plain pointers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattributes"
    using Operation = Result(ZOKA_HOST_MEMBER*)(void* self, Args...);
#pragma GCC diagnostic pop
    const HostCall underWay;
    void* const* const table = *static_cast<void* const* const*>(m_editor);
    return reinterpret_cast<Operation>(table[slot])(m_editor, args...);
}

void HostAdapter::CreateMainScript() {
    call<Word>(kSlotCreateMainScript);
}

std::optional<std::string> HostAdapter::GetMainScriptPath() {
    PathBuffer path;
    const Word result = call<Word>(kSlotGetMainScriptPath, path.data(), path.size());
    return answered(result, path.text());
}

void HostAdapter::MainScriptChanged() {
    call<Word>(kSlotMainScriptChanged);
}

std::optional<std::string> HostAdapter::GetListItemName(int index) {
    HostBuffer<kHostItemNameSize> name;
    const Word result = call<Word>(kSlotGetListItemName, Word{index}, name.data(), name.size());
    if (result <= 0) {
        return std::nullopt;
    }
    return name.text();
}

void HostAdapter::EndListUpdate() {
    call<Word>(kSlotEndListUpdate);
}

std::optional<std::string> HostAdapter::ChooseFile(const std::string& preset) {
    PathBuffer path(preset);
    const Word result = call<Word>(kSlotChooseFile, path.data(), path.size(), kChooserMode, kChooserTopic);
    return answered(result, path.text());
}

std::string HostAdapter::GetProjectFolder() {
    PathBuffer folder;
    call<Word>(kSlotGetProjectFolder, folder.data(), folder.size());
    return folder.text();
}

bool HostAdapter::CopyFileToFolder(const std::string& source, const std::string& folder) {
    if (!fits(source) || !fits(folder)) {
        return false;
    }
    PathBuffer from(source), to(folder);
    return call<Byte>(kSlotCopyFileToFolder, from.data(), to.data(), to.size()) != 0;
}

bool HostAdapter::CopyFileWithSubstitutions(
    const std::string& source, const std::string& destination,
    std::span<const std::pair<std::string, std::string>> substitutions) {
    if (!fits(source) || !fits(destination)) {
        return false;
    }
    PathBuffer from(source), to(destination);
    std::vector<ZunSubstitution> pairs;
    for (const auto& [find, replacement] : substitutions) {
        pairs.push_back({find.c_str(), replacement.c_str()});
    }
    pairs.push_back({nullptr, nullptr});
    const ZunSubstitution* const list = substitutions.empty() ? nullptr : pairs.data();
    return call<Byte>(kSlotCopyFileWithSubstitutions, from.data(), to.data(), list) != 0;
}

std::string HostAdapter::QueryFolder(ZunCommandCode code) {
    PathBuffer folder;
    ZunCommandRecord record{code, 0, folder.data(), folder.size()};
    const Word done =
        call<Word>(kSlotExecuteCommand, Word{0}, kRecordCommand, static_cast<void*>(&record), kRecordSize);
    return done != 0 && record.size != 0 ? folder.text() : std::string();
}

bool HostAdapter::OpenMap(const std::string& path) {
    std::string data = path;  // the host's operation takes writable data
    return call<Word>(kSlotExecuteCommand, Word{0}, Word{CmdOpenMap}, static_cast<void*>(data.data()),
                      static_cast<Word>(data.size())) != 0;
}

}  // namespace zoka
