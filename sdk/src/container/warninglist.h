#pragma once

#include <string>
#include <vector>

namespace xrv {

/// Collects sentences about damage for a person, up to a limit: a damaged file can give rise to thousands.
class WarningList
{
public:
    static constexpr std::size_t kMaxWarnings = 32;

    /// \a sentences is borrowed and may be null.
    explicit WarningList(std::vector<std::string> *sentences)
        : sentences(sentences)
    {
    }

    void add(const std::string &sentence)
    {
        if (!sentences || count > kMaxWarnings)
            return;
        sentences->push_back(count == kMaxWarnings ? "There are more faults of this kind." : sentence);
        ++count;
    }

private:
    std::vector<std::string> *sentences;
    std::size_t count = 0;
};

} // namespace xrv
