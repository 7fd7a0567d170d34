#include "plaz/model/repo/git/HSCPlazGitPace.h"

#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>

namespace {

constexpr std::uint64_t bytesPerSecond = 1024;
constexpr std::uint64_t packHeader = 12;
constexpr int busyShare = 10; // a moment in so many has to be busy

std::uint64_t sizeUnderWay(const std::string& packDir) {
    std::uint64_t size = 0;
    for (const std::string& name : HUTFile::createFileIter(packDir))
        if (boost::algorithm::starts_with(name, "tmp_")) size += HUTFile::getSize(packDir + "/" + name);
    return size;
}

} // namespace

HSCPlazGitPace::HSCPlazGitPace(const std::string& gitDir, int seconds)
    : m_packDir(gitDir + "/objects/pack"), m_span(seconds), m_left(sizeUnderWay(m_packDir)) {}

bool HSCPlazGitPace::beginAgain(std::uint64_t size) {
    m_begin = Clock::now();
    m_size = size;
    m_busyMoments = 0;
    return true;
}

bool HSCPlazGitPace::mayGoOn(const std::function<bool()>& isBusy) {
    const std::uint64_t size = sizeUnderWay(m_packDir);
    const std::uint64_t wanted = bytesPerSecond * static_cast<std::uint64_t>(m_span.count());
    // One that has become smaller has come to its end.
    if (size <= m_left + packHeader || size < m_size || size >= m_size + wanted) return beginAgain(size);
    if (isBusy() && ++m_busyMoments > m_span.count() / busyShare) return beginAgain(size);
    return Clock::now() - m_begin < m_span;
}
