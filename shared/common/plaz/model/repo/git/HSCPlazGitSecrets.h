#pragma once

#include "plaz/model/repo/git/HSCPlazGitCredentials.h"

#include <string>
#include <vector>

/// The logins that git is given where it speaks to a remote: the remote's and those of the proxies on the way there.
/// Who is sent one may tell it back.
class HSCPlazGitSecrets {
public:
    HSCPlazGitSecrets() = default;
    /// @param remoteUrl  with its credentials; empty for a command that speaks to none
    /// @param workDir    a working copy, which may record proxies
    HSCPlazGitSecrets(const std::string& remoteUrl, const std::string& workDir);
    /// @p text with secrets masked as everywhere, and these as well.
    std::string mask(const std::string& text) const;

private:
    void add(const HSCPlazGitCredentials& login);

    std::vector<HSCPlazGitCredentials> m_logins;
};
