#pragma once

#include <xrv60/plkerror.h>

#include <mutex>
#include <set>
#include <string>

namespace xrv {

/// Tells the log what is wrong with one open file. Every view meets the same damage in many tiles, so that each kind of
/// fault, the same words whatever the numbers in them, is told once; only the most detailed level is told of the rest.
/// Any thread.
class FaultLog
{
public:
    /// \a fileName is UTF-8.
    explicit FaultLog(std::string fileName);

    /// Damage that the file is shown in spite of: a warning.
    void damaged(const std::string &sentence);
    /// The same, of the cells: they are not all what they were meant to be.
    void cellsDamaged(const std::string &sentence);
    /// What was said first of damaged cells; empty as long as none were met.
    std::string cellDamage() const;
    /// Something could not be done: an error, or worse when memory ran out. A cancelled operation is no fault.
    void failed(const PLK::CError &error);

private:
    void note(int level, const std::string &sentence);
    bool isNewKind(int level, const std::string &sentence);

    const std::string name;
    mutable std::mutex mutex; ///< guards the following
    std::set<std::string> kinds;
    std::string firstCellDamage;
};

} // namespace xrv
