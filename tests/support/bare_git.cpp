// Runs git, or the script beside this program that stands for it, without what is loaded ahead of other programs:
// linked statically, this takes none of it.

#include <cstdlib>
#include <string>
#include <unistd.h>

int main(int, char** words) {
    unsetenv("LD_PRELOAD");
    execv((std::string(words[0]) + ".sh").c_str(), words);
    execv(GIT, words);
    return 127;
}
