#pragma once

#include <cstdint>
#include <random>
#include <string>

/// What systems make of a relative path, told by what they do with names and by none of the hub's rules.
namespace PathJudge {

/// Why a path that is put behind a directory leads to another place than the one that it spells, on Linux or on Windows
/// ("" for one that does not): out of the directory, to the directory itself, to a device, to a stream of a file, to a
/// file that has another name as well, to git's directory, or to one of the hub's own at the directory's top.
std::string findEscape(const std::string& path);

/// A path of plain names and of those that some system reads in a way of its own.
std::string makeNasty(std::minstd_rand& random);

} // namespace PathJudge
