#pragma once

#include "HubActions.h"

#include "support/HDGUIStatus.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

/// Told before each part of a command: its number from 1, and how many there are.
using BeginPart = std::function<void(std::size_t number, std::size_t count)>;

/// Does @p action(HubActions, subject) to each until @p status is cancelled.
/// @param begin  may be empty
/// @return what became of each, in order; fewer than there are after cancellation
template <typename Subject, typename Action>
auto actOnEach(HubActions& actions, const std::vector<Subject*>& subjects, const HDGUIStatus& status, Action action,
               const BeginPart& begin) {
    std::vector<decltype(std::invoke(action, actions, *subjects.front()))> results;
    for (Subject* subject : subjects) {
        if (status.isCanceled()) break;
        if (begin) begin(results.size() + 1, subjects.size());
        results.push_back(std::invoke(action, actions, *subject));
    }
    return results;
}

/// The action of removing items together: what holds others goes first, and an item that went with one of them is
/// removed too.
struct RemoveTogether {};
inline constexpr RemoveTogether removeTogether;

/// Does that to items, each given once.
std::vector<ActionResult> actOnEach(HubActions& actions, const std::vector<HSCPlazQItem*>& items,
                                    const HDGUIStatus& status, RemoveTogether action, const BeginPart& begin);

/// Whether nothing failed among @p results (of actions or stores).
template <typename Result> bool areDone(const std::vector<Result>& results) {
    return std::all_of(results.begin(), results.end(), std::mem_fn(&Result::isDone));
}
