#include "util/OwnFiles.h"

#include <array>
#include <atomic>
#include <cstring>

namespace zoka {
namespace {

constexpr size_t kLongestPath = 1000;

// Fixed memory: a signal handler can take none.
struct Place {
    enum State { Free, Filling, Filled };
    std::atomic<int> state{Free};
    std::array<char, kLongestPath + 1> path;
};
std::array<Place, 64> g_places;

}  // namespace

void noteOwnFile(std::string_view path) {
    if (path.size() > kLongestPath) {
        return;
    }
    for (Place& place : g_places) {
        int expected = Place::Free;
        if (place.state.compare_exchange_strong(expected, Place::Filling)) {
            std::memcpy(place.path.data(), path.data(), path.size());
            place.path[path.size()] = '\0';
            place.state.store(Place::Filled);
            return;
        }
    }
}

void forgetOwnFile(std::string_view path) {
    for (Place& place : g_places) {
        if (place.state.load() == Place::Filled && path == place.path.data()) {
            place.state.store(Place::Free);
            return;
        }
    }
}

void removeOwnFiles(void (*remove)(const char* path)) {
    for (const Place& place : g_places) {
        if (place.state.load() == Place::Filled) {
            remove(place.path.data());
        }
    }
}

}  // namespace zoka
