#include "plugin/host/HostCopy.h"

#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

// `copy` has it made and says what the host said. A copy may differ from its source, in
// its line ends, say; so what is judged is only whether something was copied at all.
template <class Copy>
Outcome lookedAfter(ZunEditorInterface& host, const std::string& source, const std::string& destination,
                    const Copy& copy) {
    const auto before = osFiles().readWhole(destination);
    if (!copy()) {
        return Refusal{host.copyProblem()};
    }
    if (!osFiles().exists(destination)) {
        return Refusal{"There is no script after the copying."};
    }
    // What can't be read the caller tells of, who reads it next.
    if (before && before == osFiles().readWhole(destination) && before != osFiles().readWhole(source)) {
        return Refusal{"The script is as it was before the copying."};
    }
    return {};
}

}  // namespace

Outcome copyByHost(ZunEditorInterface& host, const std::string& source, const std::string& destination,
                   std::span<const std::pair<std::string, std::string>> substitutions) {
    return lookedAfter(host, source, destination,
                       [&] { return host.CopyFileWithSubstitutions(source, destination, substitutions); });
}

Outcome copyByHostToFolder(ZunEditorInterface& host, const std::string& source, const std::string& folder) {
    return lookedAfter(host, source, joinPath(folder, fileNameOf(source)),
                       [&] { return host.CopyFileToFolder(source, folder); });
}

}  // namespace zoka
