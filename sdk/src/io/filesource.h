#pragma once

#include "bytesource.h"

#include <memory>
#include <string>

namespace xrv {

class LocalFile;

/// A file of this computer. Reads of a file that was changed in place since it was opened fail with
/// PLK_ERR_FILE_CHANGED; one that was removed or replaced by another of the same name goes on giving the bytes that it
/// had.
class FileSource : public ByteSource
{
public:
    /// \a name in UTF-8. PLK_ERR_NOT_FOUND, PLK_ERR_NO_ACCESS (also for what is no regular file) or PLK_ERR_READ.
    /// Once \a givenUp is raised, all reads are PLK_ERR_CANCELLED.
    static PLK::CError open(const std::string &name, std::shared_ptr<ByteSource> *source,
                            const CancelFlag &givenUp = CancelFlag());
    ~FileSource() override;

    const std::string &name() const override { return fileName; }
    std::uint64_t size() const override;
    bool isRemote() const override { return false; }
    std::string identity() const override;
    using ByteSource::read;
    PLK::CError read(const std::vector<ByteRange> &ranges, const CancelFlag &cancel, std::vector<Bytes> *out) override;

private:
    struct Run;
    FileSource(std::string openedName, std::unique_ptr<LocalFile> openedFile, CancelFlag givenUp);
    PLK::CError readBytes(ByteRange range, const CancelFlag &cancel, Bytes *out) const;
    PLK::CError readRun(const Run &run, const std::vector<ByteRange> &ranges, const CancelFlag &cancel,
                        std::vector<Bytes> *out) const;
    PLK::CError changedError() const;
    void logRead(const std::vector<ByteRange> &ranges) const;

    std::string fileName;
    std::unique_ptr<LocalFile> file;
    const CancelFlag givenUp;
};

} // namespace xrv
