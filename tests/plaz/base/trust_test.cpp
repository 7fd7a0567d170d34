#include "plaz/base/HSCPlazTrustRules.h"
#include "support/PathJudge.h"

#include <gtest/gtest.h>

// Names, refs and addresses that lead elsewhere let through, or good ones refused; secrets shown.
TEST(TrustTest, RefusesWhatLeadsElsewhere) {
    const auto check = [](bool (*rule)(const std::string&), bool expected, const std::vector<std::string>& texts) {
        for (const std::string& text : texts) EXPECT_EQ(rule(text), expected) << text;
    };
    check(HSCPlazTrust::isSafeRelativePath, true,
          {"a/b.json", "a..b/..c", "x.git", "Grüße/基板", "a~", "~1a", "much_longer~1"});
    check(HSCPlazTrust::isSafeRelativePath, false, {"", "a\nb"});
    for (const auto& [path, tidied] : {std::pair("./a//./b/", "a/b"),
                                       {"a/.", "a"},
                                       {"a/b.", "a/b."},
                                       {"./..//x", "../x"},
                                       {"/a/", "/a/"},
                                       {"./", "./"},
                                       {"", ""}})
        EXPECT_EQ(HSCPlazTrust::tidyRelativePath(path), tidied);
    check(HSCPlazTrust::isSafeComponent, true, {"1.0"});
    check(HSCPlazTrust::isSafeComponent, false, {".git", "1/0", "."});
    check(HSCPlazTrust::isSafeRef, true, {"main", "release/1.0"});
    check(HSCPlazTrust::isSafeRef, false, {"-x", "a b", "HEAD~1", ""});
    check(HSCPlazTrust::isSafeUrl, true,
          {"https://h/r.git", "file:///my dir/r", "/d/r", "git@h:o/r.git", "https://u:t@h/r",
           "https://h:8/@scope/x.git", "https://h/a@b.git", "https://[::1]/a@b", "https://u:t@[::1]:8/@s",
           "file://C:/a@b"});
    check(HSCPlazTrust::isSafeUrl, false,
          {"https://u:p w@h/r", "-u/x", "ext::sh -c id", "fd::7", "ftp://h/r", "ssh://-oX=y/r", "u@-oX:r",
           "https://u:TOK/EN@h/x.git", "http://u:1x/@h"});
    const std::pair<const char*, const char*> shown[] = {
        {"fetch https://me:s3cret@h/r and http://tok@h:80 x@y", "fetch https://***@h/r and http://***@h:80 x@y"},
        {"https://a:p@ss@h/r https://h/r", "https://***@h/r https://h/r"},
        {"https://TOK/EN@h/x?a=s3c&s3c#k=s3c 'https://h/?=#'", "https://***@h/x?a=***&***#k=*** 'https://h/?=#'"},
        {"'https://u:TO/K@EN@h/x.git': x@y", "'https://***@h/x.git': x@y"},
        {"h://u:a/b h://v:w@h,h://x@i", "h://u:a/b h://***@i"}};
    for (const auto& [text, masked] : shown) EXPECT_EQ(HSCPlazTrust::maskSecrets(text), masked);
    EXPECT_EQ(HSCPlazTrust::maskProxy("u:p/w@proxy:1"), "***@proxy:1");
}

// A path or a folder's name from a catalog that some system reads as another place than the one it spells.
TEST(TrustTest, NoPathThatIsUsedLeadsElsewhere) {
    std::minstd_rand random(1);
    int used = 0;
    for (int left = 500000; left > 0; --left) {
        const std::string path = PathJudge::makeNasty(random);
        for (const HSCPlazTrustRule& rule : {HSCPlazTrustRules::insideStore, HSCPlazTrustRules::folderName}) {
            if (!HSCPlazTrustRules::findRefusal(rule, "root", path).empty() || path.empty()) continue;
            const std::string escape = PathJudge::findEscape(HSCPlazTrustRules::toUsed(&rule, path));
            ASSERT_EQ(escape, "") << testing::PrintToString(path);
            ++used;
        }
    }
    EXPECT_GT(used, 100000);
}
