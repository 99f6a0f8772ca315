// Files that another program can't read or write, even when the user is allowed everything.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

// Makes a file that can't be opened for reading while this lives.
class Unreadable {
public:
    explicit Unreadable(const std::filesystem::path& path);
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;

private:
    std::shared_ptr<void> m_open;
};

// Lets writing to an existing file of some kilobytes fail while this lives; it can still be read.
class Unwritable {
public:
    explicit Unwritable(const std::filesystem::path& path);
    Unwritable(const Unwritable&) = delete;
    Unwritable& operator=(const Unwritable&) = delete;

    // What the shell must do before it starts the program that is to fail.
    std::string before() const;

private:
    std::shared_ptr<void> m_open;
};
