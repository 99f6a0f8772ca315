// The resolution, the font and the decimal sign that a driven editor finds on the system, to see a plug-in's windows at
// other sizes and in other countries.
#pragma once

#include <string>
#include <vector>

namespace zoka {

// While one lives, processes that are started find the screen's resolution, the font of messages and the
// decimal sign changed. Under
// Wine alone, where each process asks for them at its start; elsewhere nothing is changed. [editor thread]
class SystemLook {
public:
    // `dpi`: dots per inch, 0 leaves it. `font`: a face, 9 points high; empty leaves it.
    // `decimal`: what stands for the point of numbers; empty leaves it.
    SystemLook(int dpi, const std::string& font, const std::string& decimal);
    ~SystemLook();
    SystemLook(const SystemLook&) = delete;
    SystemLook& operator=(const SystemLook&) = delete;

private:
    struct Saved {
        const char* key;
        const char* name;
        bool there = false;
        unsigned long type = 0;
        std::vector<unsigned char> bytes = {};
    };
    void change(const char* key, const char* name, unsigned long type, const void* bytes, unsigned long size);

    std::vector<Saved> m_saved;
};

}  // namespace zoka
