#pragma once

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQStore;

/// Who is needed by how many: derived from what is installed, for whom, and what the descriptions of that name.
///
/// The number of an item is that of the ways that lead to it, along dependencies, from items that the user asked for; a
/// way ends where it would come back to a dependency that is on it. The work grows with the number of dependencies.
/// Only within a circle are single ways followed, a million steps for each circle at most: what is counted by then
/// stands, and is never 0 for what is needed. A number that would not fit stays at the largest that does.
namespace HSCPlazHolds {

/// Of every installed item, in the hub's order.
using Counts = std::vector<std::pair<HSCPlazQItem*, std::int32_t>>;

Counts count(const HSCPlaz& hub);
/// Gives each installed item its number. @return the stores in which one has changed
std::set<HSCPlazQStore*> apply(const HSCPlaz& hub);

} // namespace HSCPlazHolds
