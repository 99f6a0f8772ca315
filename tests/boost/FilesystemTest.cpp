// The library is built differently for the two systems; these are the calls that the
// project depends on, with the behaviour it depends on.
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace fs = boost::filesystem;

namespace {

class Filesystem : public testing::Test {
protected:
    void SetUp() override { fs::create_directory(m_folder); }
    void TearDown() override { fs::remove_all(m_folder); }

    void write(const fs::path& path, const std::string& text) const {
        std::ofstream(path.string(), std::ios::binary) << text;
    }
    std::string read(const fs::path& path) const {
        std::ifstream file(path.string(), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    const fs::path m_folder = fs::temp_directory_path() / fs::unique_path("zoka-%%%%%%%%");
};

TEST_F(Filesystem, MakesFoldersAndTellsThemFromFiles) {
    const fs::path deep = m_folder / "maps" / "level one";
    EXPECT_FALSE(fs::exists(deep));
    EXPECT_TRUE(fs::create_directories(deep));
    EXPECT_FALSE(fs::create_directories(deep)) << "it is there already";
    EXPECT_TRUE(fs::is_directory(deep));
    write(deep / "a.kez", "x");
    EXPECT_TRUE(fs::exists(deep / "a.kez"));
    EXPECT_FALSE(fs::is_directory(deep / "a.kez"));
}

TEST_F(Filesystem, CopiesButRefusesAnExistingTarget) {
    write(m_folder / "from", "new\r\n\x1a");
    fs::copy_file(m_folder / "from", m_folder / "to");
    EXPECT_EQ(read(m_folder / "to"), "new\r\n\x1a");

    write(m_folder / "kept", "old");
    EXPECT_THROW(fs::copy_file(m_folder / "from", m_folder / "kept"), fs::filesystem_error);
    EXPECT_EQ(read(m_folder / "kept"), "old");
}

TEST_F(Filesystem, ErrorsSayWhichPathAndWhy) {
    const fs::path missing = m_folder / "missing" / "sub";
    try {
        fs::create_directory(missing);
        FAIL() << "a folder was made in a folder that is not there";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.path1(), missing);
        EXPECT_EQ(error.code(), boost::system::errc::no_such_file_or_directory);
        EXPECT_NE(std::string(error.what()).find("sub"), std::string::npos);
    }
    EXPECT_THROW(fs::directory_iterator(m_folder / "missing"), fs::filesystem_error);
}

TEST_F(Filesystem, WalksAFolderWithTheStatusOfEachEntry) {
    fs::create_directory(m_folder / "folder");
    write(m_folder / "file", "");
    std::set<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
        const bool folder = entry.status().type() == fs::directory_file;
        found.insert(entry.path().filename().string() + (folder ? "/" : ""));
    }
    EXPECT_EQ(found, (std::set<std::string>{"file", "folder/"}));
}

TEST_F(Filesystem, CompletesRelativePathsWithTheCurrentFolder) {
    EXPECT_EQ(fs::system_complete("a"), fs::current_path() / "a");
    EXPECT_TRUE(fs::system_complete(m_folder).is_absolute());
}

}  // namespace
