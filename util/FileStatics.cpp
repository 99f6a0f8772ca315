// The static helpers of file_t: paths, folders and times.
#include <algorithm>
#include <cstring>

#include "util/File.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace {

// A FILETIME's distance to the Unix epoch, in its own units.
constexpr std::uint64_t kTicksPerSecond = 10'000'000;
constexpr std::uint64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kDaysFrom1601To1970 = 134'774;

struct CivilDate {
    std::int64_t year;
    unsigned month, day;
};

// The proleptic Gregorian date of a day counted from 1970-01-01. Years are taken as beginning in March, so
// that the leap day is the last one, in eras of 400 years.
CivilDate civilFromDays(std::int64_t days) {
    days += 719'468;  // from 0000-03-01
    const std::int64_t era = days / 146'097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146'097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned marchMonth = (5 * dayOfYear + 2) / 153;
    const unsigned month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
    return {yearOfEra + era * 400 + (month <= 2), month, dayOfYear - (153 * marchMonth + 2) / 5 + 1};
}

// What fits a DOS time stamp: two-second steps from 1980 to 2107.
struct DosStamp {
    std::uint16_t date = 0;  // year - 1980: 7 bits, month: 4, day: 5
    std::uint16_t time = 0;  // hour: 5 bits, minute: 6, second / 2: 5
};

DosStamp packDosTime(zoka::FileTime fileTime) {
    const std::uint64_t seconds = fileTime.ticks() / kTicksPerSecond;
    const CivilDate date =
        civilFromDays(static_cast<std::int64_t>(seconds / kSecondsPerDay) - kDaysFrom1601To1970);
    const auto ofDay = static_cast<unsigned>(seconds % kSecondsPerDay);
    if (date.year < 1980 || date.year > 2107) {
        return {0x21, 0};  // 1980-01-01, the format's first moment
    }
    const auto year = static_cast<unsigned>(date.year - 1980);
    return {static_cast<std::uint16_t>(year << 9 | date.month << 5 | date.day),
            static_cast<std::uint16_t>(ofDay / 3600 << 11 | ofDay / 60 % 60 << 5 | ofDay % 60 / 2)};
}

}  // namespace

std::string file_t::AbsPath(const char* fileName) {
    const std::string path = fileName ? fileName : "";
    if (path.size() > 1 && path[1] == ':') {
        return path;
    }
    std::string folder = zoka::osFiles().currentFolder().substr(0, 259);
    if (folder.empty()) {
        return path;
    }
    if (folder.back() == '\\') {
        folder.pop_back();
    }
    if (path.starts_with('\\')) {
        const bool hasDrive = folder.size() > 1 && folder[1] == ':';
        return hasDrive ? folder.substr(0, 2) + path : path;
    }
    for (size_t at = 0; path.compare(at, 3, "..\\") == 0; at += 3) {
        const size_t cut = folder.rfind('\\');
        if (cut == std::string::npos) {
            return path;
        }
        folder.resize(cut);
    }
    return folder + "\\" + path;
}

bool file_t::DirExist(const char* path) {
    // Systems differ in what name a search for "." finds.
    const std::string_view asked = path ? path : "";
    if (zoka::fileNameOf(asked) == ".") {
        return false;
    }
    const auto entry = zoka::osFiles().search(std::string(asked));
    return entry && entry->isFolder && entry->name != ".";
}

void file_t::MakeDir(const char* dir) {
    const std::string path = dir ? dir : "";
    if (path.empty() || DirExist(dir)) {
        return;
    }
    size_t start = 0;
    if (path.find(':') != std::string::npos) {
        start = path.find('\\');
        if (start == std::string::npos) {
            return;
        }
        ++start;
    }
    zoka::OsFiles& files = zoka::osFiles();
    for (size_t slash = path.find('\\', start); slash != std::string::npos;
         slash = path.find('\\', slash + 1)) {
        if (slash > 0 && slash + 1 < path.size()) {
            files.makeFolder(path.substr(0, slash));
        }
    }
    files.makeFolder(path);
}

bool file_t::FileExist(const char* fileName, fileinfo_t* info) {
    const auto entry = zoka::osFiles().search(fileName ? fileName : "");
    if (!entry) {
        return false;
    }
    if (info) {
        *info = {};
        const std::string path = AbsPath(fileName);
        std::memcpy(info->name, path.data(), std::min(path.size(), sizeof info->name - 1));
        info->lastWrite = entry->lastWrite;
        info->sizeHigh = static_cast<std::uint32_t>(entry->size >> 32);
        info->sizeLow = static_cast<std::uint32_t>(entry->size);
    }
    return true;
}

bool file_t::get_file_time(const char* fileName, zoka::FileTime* time) {
    return fileName && zoka::osFiles().readTime(fileName, time);
}

bool file_t::set_file_time(const char* fileName, const zoka::FileTime* time) {
    return fileName && time && zoka::osFiles().setTimes(fileName, *time);
}

std::string file_t::ConvertFileTime(const zoka::FileTime* time) {
    const DosStamp stamp = packDosTime(time ? *time : zoka::FileTime{});
    char text[32];
    std::snprintf(text, sizeof text, "%02d.%02d.%04d  %02d:%02d", stamp.date & 31, stamp.date >> 5 & 15,
                  1980 + (stamp.date >> 9), stamp.time >> 11, stamp.time >> 5 & 63);
    return text;
}
