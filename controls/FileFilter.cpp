#include "controls/FileFilter.h"

#include "util/PathRules.h"

namespace zoka {

const char* fileFilterFor(std::string_view current) {
    const size_t dot = current.rfind('.');
    const std::string_view extension = dot == current.npos ? std::string_view() : current.substr(dot + 1);
    for (const char* picture : {"bmp", "pcx", "tga"}) {
        if (equalNoCase(extension, picture)) {
            return "Picture Files (*.bmp, *.pcx, *.tga)|*.bmp;*.pcx;*.tga|All Files (*.*)|*.*||";
        }
    }
    if (equalNoCase(extension, "wav")) {
        return "Sound Files (*.wav)|*.wav|All Files (*.*)|*.*||";
    }
    return "All Files (*.*)|*.*||";
}

}  // namespace zoka
