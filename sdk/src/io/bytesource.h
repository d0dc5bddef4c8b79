#pragma once

#include "base/bytes.h"
#include "base/cancelflag.h"

#include <xrv60/plkerror.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace xrv {

/// \a ranges in file order, those that lie within \a gap bytes of each other as one. Empty ones are left out.
std::vector<ByteRange> joinedRanges(std::vector<ByteRange> ranges, std::uint64_t gap);

/// Where the bytes of a file come from. Any thread may read, several at once.
class ByteSource
{
public:
    virtual ~ByteSource() = default;

    /// UTF-8 name or address, for messages.
    virtual const std::string &name() const = 0;
    virtual std::uint64_t size() const = 0;
    virtual bool isRemote() const = 0;
    /// Same identity, same bytes: the name with what tells one version of the file from the next.
    virtual std::string identity() const { return name() + '|' + std::to_string(size()); }

    /// Reads all \a ranges, in order, each into one entry of \a out. Ranges may touch and overlap; a source is free to
    /// join and to reorder what it fetches. PLK_ERR_TRUNCATED when a range reaches past the end, PLK_ERR_FILE_CHANGED
    /// when the file is not the one that was opened. \a out is undefined on failure.
    virtual PLK::CError read(const std::vector<ByteRange> &ranges, const CancelFlag &cancel,
                             std::vector<Bytes> *out) = 0;

    /// Says that \a ranges will be read soon, in pieces and in any order: a distant source fetches what it lacks of
    /// them in as few requests as it can, and returns when it has them or cannot get them. Nothing need be prefetched.
    /// Same errors as read().
    virtual PLK::CError prefetch(const std::vector<ByteRange> &ranges, const CancelFlag &cancel);

    /// Keeps what was found out about this version of the file for the next visit, where there is a place for it.
    /// \a name tells one such piece of knowledge from another.
    virtual void remember(const std::string &name, const Bytes &knowledge);
    /// False when nothing is known. Comes from outside the process: to be checked like the file.
    virtual bool recall(const std::string &name, Bytes *knowledge);

    /// What the publisher of the file found out about it and put beside it. As with recall(); a distant source may have
    /// to ask for it first.
    virtual bool recallPublished(const std::string &name, Bytes *knowledge);

    /// Why nothing more can be had from this source until it is reconnected or opened anew: PLK_ERR_CONNECTION_LOST or
    /// PLK_ERR_FILE_CHANGED. Returns at once.
    virtual PLK::CError condition() const { return {}; }
    /// Lets a source whose connection was lost try again with the next read, which, unless it \a mayTakeLong, gives up
    /// sooner than usual where the server still says nothing. Returns at once.
    virtual void reconnect(bool /*mayTakeLong*/) {}

    /// One range.
    PLK::CError read(ByteRange range, Bytes *out, const CancelFlag &cancel = {});

protected:
    /// PLK_ERR_TRUNCATED with a sentence when one of \a ranges reaches past the end.
    PLK::CError checkRanges(const std::vector<ByteRange> &ranges) const;
};

} // namespace xrv
