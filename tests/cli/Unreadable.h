// Files that another program can't read or write, even when the user is allowed everything.
#pragma once

#include <filesystem>
#include <string>

// Makes a file that can't be opened for reading while this lives.
class Unreadable {
public:
    explicit Unreadable(const std::filesystem::path& path);
    ~Unreadable();
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;

private:
    void* m_handle = nullptr;
};

// Lets writing to an existing file of some kilobytes fail while this lives; it can still be read.
class Unwritable {
public:
    explicit Unwritable(const std::filesystem::path& path);
    ~Unwritable();
    Unwritable(const Unwritable&) = delete;
    Unwritable& operator=(const Unwritable&) = delete;

    // What the shell must do before it starts the program that is to fail.
    std::string before() const;

private:
    void* m_handle = nullptr;
};
