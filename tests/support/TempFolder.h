// A folder of a test's own, removed with all it holds at the end. Its content is written and read past the
// code under test.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zoka::test {

class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter = 0;
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        m_native = std::filesystem::temp_directory_path() /
                   ("zoka-test-" + std::to_string(ticks) + "-" + std::to_string(++counter));
        std::filesystem::create_directories(m_native);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_native, ignored);
    }

    // Absolute, as the suite writes paths.
    std::string path() const {
        std::string text = m_native.string();
        std::replace(text.begin(), text.end(), '/', '\\');
        return text.starts_with('\\') ? "C:" + text : text;
    }
    std::string path(const std::string& name) const { return path() + "\\" + name; }
    std::filesystem::path native(const std::string& name) const { return m_native / name; }

    // The suite's path of a new file with this content.
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(native(name), std::ios::binary) << content;
        return path(name);
    }
    // "<missing>" when there is no such file.
    std::string read(const std::string& name) const {
        std::ifstream in(native(name), std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "<missing>";
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(m_native)) {
            found.push_back(entry.path().filename().string());
        }

        std::sort(found.begin(), found.end());
        return found;
    }

private:
    std::filesystem::path m_native;
};

}  // namespace zoka::test
