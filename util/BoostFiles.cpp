#include "util/BoostFiles.h"

#include <boost/filesystem.hpp>
#include <exception>
#include <fstream>
#include <vector>

namespace zoka {
namespace {

namespace fs = boost::filesystem;
using boost::system::error_code;

// Runs `work(error)` and gives the number of what went wrong in it, whether it was told or thrown (a path that
// can't be converted, no memory).
template <class Work>
int numberOfError(Work work) {
    error_code error;
    try {
        work(error);
    } catch (const fs::filesystem_error& thrown) {
        error = thrown.code();
    } catch (const std::exception&) {
        error = boost::system::errc::make_error_code(boost::system::errc::not_enough_memory);
    }
    return error.value();
}

OsKind kindOf(const fs::file_status& status) {
    switch (status.type()) {
        case fs::file_not_found:
            return OsKind::Missing;
        case fs::regular_file:
            return OsKind::File;
        case fs::directory_file:
            return OsKind::Folder;
        case fs::status_error:
            return OsKind::Unknown;
        default:
            return OsKind::Other;
    }
}

// A copy that the disk had no room for, or could not write, is half a file. No other error comes after the
// target was made.
bool leavesHalf(const error_code& error) {
    namespace errc = boost::system::errc;
    return error == errc::no_space_on_device || error == errc::io_error || error == errc::file_too_large;
}

}  // namespace

int boostKindOf(const std::string& path, OsKind& kind) {
    kind = OsKind::Unknown;
    return numberOfError([&](error_code& error) {
        kind = kindOf(fs::status(path, error));
        if (kind != OsKind::Unknown) {
            error.clear();  // Boost tells of a missing file as an error, too
        }
    });
}

int boostListFolder(const std::string& folder, std::vector<OsListed>& entries) {
    return numberOfError([&](error_code& error) {
        fs::directory_iterator at(folder, error);
        while (!error && at != fs::directory_iterator()) {
            error_code unknown;
            entries.push_back({at->path().filename().string(), kindOf(at->status(unknown))});
            at.increment(error);
        }
    });
}

// One by one: where memory runs out in the library's own way of making them all, it ends the process. What is above a
// folder that is there is not asked about: a server, or a folder above a share's, may not be looked at.
int boostMakeFolders(const std::string& path) {
    return numberOfError([&](error_code& error) {
        std::vector<fs::path> missing;
        error_code ignored;
        for (fs::path at(path); at.has_relative_path() && !fs::is_directory(at, ignored);
             at = at.parent_path()) {
            missing.push_back(at);
        }
        for (; !missing.empty(); missing.pop_back()) {
            if (!fs::create_directory(missing.back(), error) && error) {
                return;
            }
        }
        if (!error && !fs::is_directory(path, error) && !error) {
            error = boost::system::errc::make_error_code(boost::system::errc::not_a_directory);
        }
    });
}

int boostCopyNew(const std::string& from, const std::string& to) {
    return numberOfError([&](error_code& error) {
        fs::copy_file(from, to, fs::copy_options::none, error);
        error_code ignored;
        // A source that can't be opened fails before the target is made: what is there then is another's. Whatever
        // comes later befell a target that was made by this copy, or there would be none.
        if (error && leavesHalf(error) && std::ifstream(from).is_open()) {
            fs::remove(to, ignored);
        }
    });
}

}  // namespace zoka
