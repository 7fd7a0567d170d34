#pragma once

#include "plaz/base/PlazExport.h"

#include <string>
#include <vector>

class HSCPlazQItem;

/// What somebody has asked for, for as long as the object lives: all that is changed meanwhile is one entry of the
/// history. Inside another one it changes nothing, so that whoever knows best what was asked for says so. Belongs to
/// the hub's thread.
class PLAZ_API HSCPlazCommand {
public:
    /// @param text  as a person would write it: "refresh boards"; without secrets
    explicit HSCPlazCommand(const std::string& text);
    /// "install boards::aurora": of each item the revision only where it is not the latest one.
    HSCPlazCommand(const std::string& action, const std::vector<HSCPlazQItem*>& items);
    ~HSCPlazCommand();
    HSCPlazCommand(const HSCPlazCommand&) = delete;
    HSCPlazCommand& operator=(const HSCPlazCommand&) = delete;

private:
    bool m_isOutermost;
};
