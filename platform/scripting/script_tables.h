#pragma once

#include <boost/functional/hash.hpp>

#include <unordered_map>

namespace hdi {

/// The two tables of an object cache: which script objects wrap a native object, and which native object a script
/// object wraps. @p Script is the scripting language's own object type.
template <typename Native, typename Script> struct script_tables {
    using native_to_script = std::unordered_multimap<const Native*, Script*, boost::hash<const Native*>>;
    using script_to_native = std::unordered_map<Script*, Native*, boost::hash<Script*>>;

    /// Enters a pair; one that is there already stays once.
    static void add(native_to_script& scripts, script_to_native& natives, Native* native, Script* script) {
        if (natives.emplace(script, native).second) scripts.emplace(native, script);
    }

    /// Takes a script object out of both tables. @return false when it was in neither
    static bool remove(native_to_script& scripts, script_to_native& natives, Script* script) {
        const auto found = natives.find(script);
        if (found == natives.end()) return false;
        const auto [first, last] = scripts.equal_range(found->second);
        for (auto entry = first; entry != last; ++entry)
            if (entry->second == script) {
                scripts.erase(entry);
                break;
            }
        natives.erase(found);
        return true;
    }

    /// A script object that wraps @p native; null when none does.
    static Script* find_script(const native_to_script& scripts, const Native* native) {
        const auto found = scripts.find(native);
        return found == scripts.end() ? nullptr : found->second;
    }

    /// The native object behind @p script; null when it wraps none (any more).
    static Native* find_native(const script_to_native& natives, Script* script) {
        const auto found = natives.find(script);
        return found == natives.end() ? nullptr : found->second;
    }

    /// Takes out all that wraps a dying native object. A script object that the other table does not know, or knows for
    /// another native object, is handed to @p corrupt; each other one, when it is out of that table, to @p invalidate.
    template <typename Invalidate, typename Corrupt>
    static void remove_native(native_to_script& scripts, script_to_native& natives, const Native* native,
                              Invalidate invalidate, Corrupt corrupt) {
        const auto [first, last] = scripts.equal_range(native);
        for (auto entry = first; entry != last; ++entry) {
            const auto found = natives.find(entry->second);
            if (found == natives.end() || found->second != native) {
                corrupt();
                continue;
            }
            natives.erase(found);
            invalidate(entry->second);
        }
        scripts.erase(first, last);
    }
};

} // namespace hdi
