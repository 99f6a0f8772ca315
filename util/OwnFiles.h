// The files that the process has made for itself and takes away again: siblings of what is being saved, locks.
// A program that is ended by a signal in the middle removes them.
#pragma once

#include <string_view>

namespace zoka {

// From its making until it is renamed or deleted. What finds no place in the list (paths of more than 1,000
// bytes, more than 64 files at once) is left to the clearing of old ones. [any thread]
void noteOwnFile(std::string_view path);
void forgetOwnFile(std::string_view path);

// Calls `remove` for each; only what a signal handler may do happens here.
void removeOwnFiles(void (*remove)(const char* path));

}  // namespace zoka
