#include "tools/editor/win/CallLog.h"

namespace zoka {

namespace {

std::string flat(const CallLogLine& line) {
    return line.thread + ": " + line.call + " -> " + line.answer;
}

}  // namespace

CallLog::~CallLog() {
    if (m_file) {
        std::fclose(m_file);
    }
}

bool CallLog::openFile(const std::string& path) {
    std::FILE* const file = std::fopen(path.c_str(), "w");
    if (!file) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    if (m_file) {
        std::fclose(m_file);
    }
    m_file = file;
    return true;
}

void CallLog::notify(HWND window, UINT message) {
    const std::lock_guard lock(m_mutex);
    m_window = window;
    m_message = message;
    m_told = false;
}

void CallLog::add(const std::string& call, const std::string& answer) {
    const DWORD thread = GetCurrentThreadId();
    CallLogLine line{thread == m_editorThread ? "editor" : "panel " + std::to_string(thread), call, answer};
    const std::lock_guard lock(m_mutex);
    if (m_file) {
        std::fprintf(m_file, "%s\n", flat(line).c_str());
        std::fflush(m_file);
    }
    if (m_echo) {
        std::printf("%s\n", flat(line).c_str());
        std::fflush(stdout);
    }
    m_lines.push_back(std::move(line));
    if (m_window && !m_told) {
        m_told = PostMessageA(m_window, m_message, 0, 0) != 0;
    }
}

void CallLog::setEcho(bool on) {
    const std::lock_guard lock(m_mutex);
    m_echo = on;
}

size_t CallLog::size() {
    const std::lock_guard lock(m_mutex);
    m_told = false;
    return m_lines.size();
}

CallLogLine CallLog::line(size_t index) {
    const std::lock_guard lock(m_mutex);
    return index < m_lines.size() ? m_lines[index] : CallLogLine{};
}

void CallLog::clear() {
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
    if (m_window) {
        PostMessageA(m_window, m_message, 0, 0);
    }
}

bool CallLog::holds(const std::string& text, size_t first) {
    const std::lock_guard lock(m_mutex);
    for (size_t i = first; i < m_lines.size(); ++i) {
        if (flat(m_lines[i]).find(text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

std::string quoted(const char* text, size_t limit) {
    if (!text) {
        return "null";
    }
    std::string out = "\"";
    for (size_t i = 0; text[i]; ++i) {
        if (i == limit) {
            out += "...";
            break;
        }
        out += static_cast<unsigned char>(text[i]) < ' ' ? '.' : text[i];
    }
    return out + "\"";
}

}  // namespace zoka
